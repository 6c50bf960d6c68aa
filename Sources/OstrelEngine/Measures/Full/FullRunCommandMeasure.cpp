#include "OstrelEngine/Measures/Full/FullRunCommandMeasure.h"

#include "OstrelCore/Documents/TextDecoding.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelCore/Text/URLScheme.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Measures/Full/ScriptFiles.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/Workspace.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include <unistd.h>

namespace Ostrel {

namespace fs = std::filesystem;

namespace {

enum Status {
    NeverRun = -1,
    Running = 0,
    Done = 1,
    UnknownCommand = 100,
    StillRunning = 101,
    NotRunning = 102,
    CannotStart = 103,
    CannotSave = 104,
    CannotEnd = 105,
};

constexpr const char* Shell = "/bin/sh";

/// What the home system runs and this one does not.
bool isForeign(std::string_view program) {
    static constexpr std::array Suffixes = {".EXE", ".BAT", ".CMD", ".PS1", ".VBS", ".AHK"};
    static constexpr std::array Shells = {"CMD", "POWERSHELL", "PWSH", "WSCRIPT", "CSCRIPT"};
    const auto name = upperCased(lastPathComponent(normalizeSeparators(program)));
    return std::ranges::any_of(Suffixes, [&](const char* suffix) { return name.ends_with(suffix); })
        || std::ranges::find(Shells, name) != Shells.end();
}

std::string_view withoutQuotes(std::string_view text) {
    text = trimmed(text);
    while (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = trimmed(text.substr(1, text.size() - 2));
    return text;
}

/// Only the double quote groups words.
std::vector<std::string> words(std::string_view text) {
    std::vector<std::string> result;
    std::string word;
    bool isQuoted = false;
    bool hasWord = false;
    for (const char c : text) {
        if (c == '"') {
            isQuoted = !isQuoted;
            hasWord = true;
        } else if (!isQuoted && (c == ' ' || c == '\t' || c == '\r' || c == '\n')) {
            if (std::exchange(hasWord, false))
                result.push_back(std::exchange(word, {}));
        } else {
            word += c;
            hasWord = true;
        }
    }
    if (hasWord)
        result.push_back(std::move(word));
    return result;
}

bool isProgram(const std::string& path) {
    std::error_code failed;
    return fs::is_regular_file(path, failed) && access(path.c_str(), X_OK) == 0;
}

std::optional<std::string> onSearchPath(std::string_view name) {
    const char* folders = std::getenv("PATH");
    for (const auto folder : splitDroppingEmpty(folders ? folders : "/usr/bin:/bin", ':')) {
        auto path = appendingPathComponent(folder, name);
        if (isAbsolutePath(path) && isProgram(path))
            return path;
    }
    return std::nullopt;
}

/// UTF-8, unless a mark or zero bytes show UTF-16.
std::string decodedOutput(std::string bytes) {
    if (!bytes.starts_with("\xFF\xFE") && !bytes.starts_with("\xFE\xFF") && bytes.find('\0') != std::string::npos)
        bytes.insert(0, "\xFF\xFE");
    return decodeText(std::move(bytes));
}

std::string encoded(std::string_view text, std::string_view type) {
    if (equalsIgnoringCase(type, "UTF8"))
        return std::string(text);
    const bool isWide = !equalsIgnoringCase(type, "ANSI");
    std::string bytes = isWide ? "\xFF\xFE" : "";
    for (std::size_t i = 0; i < text.size();) {
        const auto [c, length] = decodeCharacter(text, i);
        i += length;
        const auto unit = [&](char32_t value) {
            bytes += static_cast<char>(value & 0xFF);
            if (isWide)
                bytes += static_cast<char>(value >> 8 & 0xFF);
        };
        if (!isWide) {
            unit(c < 0x100 ? c : U'?');
        } else if (c < 0x10000) {
            unit(c);
        } else {
            unit(0xD800 + ((c - 0x10000) >> 10));
            unit(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return bytes;
}

} // namespace

FullRunCommandMeasure::FullRunCommandMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host) {
    show(NeverRun);
}

FullRunCommandMeasure::~FullRunCommandMeasure() {
    if (program_ && !wasHidden_)
        program_->release();
}

void FullRunCommandMeasure::update() {
    show(status_);
}

void FullRunCommandMeasure::show(int status) {
    status_ = status;
    publishText(text_, status);
}

bool FullRunCommandMeasure::executeCommand(std::string_view command) {
    command = trimmed(command);
    if (command.empty() || equalsIgnoringCase(command, "Run"))
        run();
    else if (equalsIgnoringCase(command, "Close"))
        end(false);
    else if (equalsIgnoringCase(command, "Kill"))
        end(true);
    else
        show(UnknownCommand);
    return true;
}

void FullRunCommandMeasure::end(bool byForce) {
    if (!program_)
        show(NotRunning);
    else if (!(byForce ? program_->kill() : program_->close()))
        show(CannotEnd);
}

std::string FullRunCommandMeasure::folder() const {
    const auto written = withoutQuotes(text("StartInFolder"_key));
    return written.empty() ? host().folders().skinFolder : host().folders().absolutePath(written);
}

std::optional<std::string> FullRunCommandMeasure::programFile(std::string_view program) const {
    const bool isName = program.find_first_of("\\/") == std::string_view::npos;
    if (isName) {
        if (auto found = onSearchPath(program))
            return found;
    }
    const auto path = host().folders().absolutePath(program);
    return isProgram(path) ? std::optional(path) : std::nullopt;
}

std::optional<FullRunCommandMeasure::CommandLine> FullRunCommandMeasure::commandLine() const {
    const auto program = withoutQuotes(text("Program"_key));
    const auto parameter = trimmed(text("Parameter"_key));
    if (program.empty()) {
        if (parameter.empty())
            return std::nullopt;
        return CommandLine{Shell, {"-c", std::string(parameter)}, std::string(Shell) + " -c " + std::string(parameter)};
    }
    if (isForeign(program)) {
        host().log(LogLevel::Warning, name(), std::string(program) + " does not run on this system");
        return std::nullopt;
    }
    const auto file = programFile(program);
    if (!file) {
        host().log(LogLevel::Warning, name(), std::string(program) + " is no program here");
        return std::nullopt;
    }
    const std::string shown = parameter.empty() ? *file : *file + " " + std::string(parameter);
    return CommandLine{*file, words(parameter), shown};
}

void FullRunCommandMeasure::run() {
    if (program_)
        return show(StillRunning);
    const auto& platform = host().platform();
    const auto program = withoutQuotes(text("Program"_key));
    // One letter before a colon is a drive.
    if (urlScheme(program).size() > 1) {
        const bool isOpened = host().isAllowed(Permission::Programs, program) && platform.workspace
            && platform.workspace->openURL(std::string(program));
        return show(isOpened ? Done : CannotStart);
    }
    const auto line = commandLine();
    if (!line || !host().isAllowed(Permission::Programs, line->shown))
        return show(CannotStart);
    if (!platform.programs) {
        const bool isLaunched = platform.workspace && platform.workspace->launch(line->program, line->arguments);
        show(isLaunched ? Done : CannotStart);
        // Nothing tells when it ends: done is done.
        if (isLaunched)
            host().runAction(*this, std::string(text("FinishAction"_key)));
        return;
    }
    wasHidden_ = equalsIgnoringCase(trimmed(text("State"_key, "Hide")), "Hide");
    program_ = platform.programs->start({.program = line->program, .arguments = line->arguments, .folder = folder()},
        [this, life = std::weak_ptr<int>(life_)](const ProgramEnd& end) {
            if (!life.expired())
                finish(end);
        });
    ++runs_;
    show(program_ ? Running : CannotStart);
    if (program_)
        startTimeout();
}

void FullRunCommandMeasure::startTimeout() {
    const double timeout = number("Timeout"_key, -1);
    if (!(timeout >= 0))
        return;
    host().platform().mainQueue.postAfter(timeout / 1000, [this, run = runs_, life = std::weak_ptr<int>(life_)] {
        if (life.expired() || !program_ || run != runs_)
            return;
        if (wasHidden_) {
            program_->kill();
            return;
        }
        program_->close();
        // It may go on; nothing more is heard of it.
        program_->release();
        finish({});
    });
}

void FullRunCommandMeasure::finish(const ProgramEnd& end) {
    program_.reset();
    if (end.wasOverfull)
        host().log(LogLevel::Warning, name(), "the program printed too much and was ended");
    text_ = decodedOutput(end.output);
    show(save(text_) ? Done : CannotSave);
    host().valueDidArrive(*this);
    host().runAction(*this, std::string(text("FinishAction"_key)));
}

bool FullRunCommandMeasure::save(std::string_view output) const {
    const auto file = withoutQuotes(text("OutputFile"_key));
    if (file.empty())
        return true;
    // Of the pack only the skin's own folder.
    PackFolders own = host().folders();
    own.root = own.skinFolder;
    own.settings.clear();
    own.skins.clear();
    std::string error;
    const bool isSaved = ScriptFiles(own).write(file, encoded(output, trimmed(text("OutputType"_key, "UTF16"))), error);
    if (!isSaved)
        host().log(LogLevel::Warning, name(), std::string(file) + ": " + error);
    return isSaved;
}

} // namespace Ostrel
