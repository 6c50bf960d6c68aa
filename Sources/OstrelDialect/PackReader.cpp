#include "OstrelDialect/PackReader.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/INILines.h"
#include "OstrelCore/Documents/SectionClassifier.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/LiteralMarks.h"

#include <cstdlib>
#include <list>
#include <memory>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

PackSection::Kind kindOf(const PackSection& section) {
    using Kind = PackSection::Kind;
    if (equalsIgnoringCase(section.name, "RAINMETER"))
        return Kind::Rainmeter;
    if (equalsIgnoringCase(section.name, "VARIABLES"))
        return Kind::Variables;
    if (equalsIgnoringCase(section.name, "METADATA"))
        return Kind::Metadata;
    if (option(section.options, "Measure"_key))
        return Kind::Measure;
    return option(section.options, "Meter"_key) ? Kind::Meter : Kind::Other;
}

/// One reading of a skin: what all its files share.
class Reading {
public:
    Reading(FileProvider& files, const PackFolders& folders)
        : files_(files)
        , folders_(folders)
        , scope_(variables_, folders) { }

    std::optional<PackSkin> read() {
        const auto content = files_.contentsOfFile(folders_.skinFile);
        if (!content)
            return std::nullopt;
        const auto lines = readLines(*content);
        rememberLaterVariables(lines);
        readFile(lines, folders_.skinFile, 0, sections_.end());
        return finished();
    }

private:
    struct Entry {
        PackSection section;
        INISection lines;
    };
    using Place = std::list<Entry>::iterator;

    /// One file as it is read once; a file that is included twice is read twice.
    struct File {
        std::string path;
        int depth = 0;
        std::shared_ptr<const std::string> sharedPath;
        /// The section that takes the lines at hand; the end where there is none.
        Place current;
        /// Behind it new sections of an included file are put; those of the main file go to the end.
        Place newest;
        /// Behind it go the new sections of what the current section includes.
        Place includeAfter;
        CaseInsensitiveDictionary<bool> heads = {};
        /// The keys of the current section that this file has given already.
        CaseInsensitiveDictionary<bool> keys = {};
        bool isIgnored = true;
    };

    /// An include may be named by a variable of the main file that stands further down.
    void rememberLaterVariables(const std::vector<INILine>& lines) {
        bool isVariables = false;
        for (const auto& line : lines) {
            if (line.kind == INILineKind::SectionHead)
                isVariables = equalsIgnoringCase(trimmedWhitespace(line.text), "VARIABLES");
            else if (const auto pair = isVariables ? splitKeyLine(line.text) : std::nullopt)
                laterVariables_.insertIfAbsent(pair->key, std::string(pair->value));
        }
        variables_ = laterVariables_;
    }

    /// `holder` is the section that includes the file: its new sections stand behind it.
    void readFile(const std::vector<INILine>& lines, const std::string& path, int depth, Place holder) {
        lineCount_ += lines.size();
        File file{path, depth, std::make_shared<const std::string>(path), sections_.end(), holder, holder};
        for (const auto& line : lines) {
            if (line.kind == INILineKind::SectionHead)
                enter(line, file);
            else if (line.kind == INILineKind::Key)
                readKey(line, file);
            else if (!file.isIgnored)
                file.current->lines.appendComment(line.text);
        }
        newestOfIncluded_ = file.newest;
    }

    void enter(const INILine& line, File& file) {
        const auto name = trimmedWhitespace(line.text);
        file.keys.clear();
        file.isIgnored = !file.heads.insertIfAbsent(name, true);
        if (file.isIgnored) {
            warn("Section '" + std::string(name) + "' stands twice in one file; the second is ignored", line, file);
            return;
        }
        if (const auto* known = places_.find(name)) {
            file.current = file.includeAfter = *known;
            return;
        }
        const bool isAtEnd = file.depth == 0 || file.newest == sections_.end();
        const auto before = isAtEnd ? sections_.end() : std::next(file.newest);
        const SourceLocation at{file.sharedPath, line.number};
        file.current = sections_.insert(before,
            Entry{{std::string(name), PackSection::Kind::Other, {}}, INISection{std::string(name), at, {}, {}}});
        file.newest = file.includeAfter = file.current;
        places_.set(name, file.current);
    }

    void readKey(const INILine& line, File& file) {
        const auto pair = splitKeyLine(line.text);
        if (!pair)
            return;
        if (hasPrefixIgnoringCase(pair->key, "@INCLUDE")) {
            if (!file.isIgnored || file.heads.isEmpty())
                include(pair->value, line, file);
            return;
        }
        if (file.isIgnored)
            return;
        auto& entry = *file.current;
        entry.lines.append(pair->key, pair->value, {file.sharedPath, line.number});
        if (!file.keys.insertIfAbsent(pair->key, true))
            return;
        entry.section.options.set(pair->key, std::string(pair->value));
        if (equalsIgnoringCase(entry.section.name, "VARIABLES"))
            variables_.set(pair->key, std::string(pair->value));
    }

    void include(std::string_view value, const INILine& line, File& file) {
        const auto path = includedPath(resolveReferences(value, scope_, {}, ReferenceKinds::AtLoad), file);
        if (file.depth + 1 >= PackReader::MaxIncludeDepth || ++includes_ > PackReader::MaxIncludes
            || lineCount_ > PackReader::MaxLines || bytes_ > PackReader::MaxBytes) {
            if (!std::exchange(wasExhausted_, true))
                error("Too many included files or lines at: " + path, line, file);
            return;
        }
        const auto content = files_.contentsOfFile(path);
        if (!content) {
            error("Cannot read file: " + path, line, file);
            return;
        }
        bytes_ += content->size();
        const auto holder = file.includeAfter;
        readFile(readLines(*content), path, file.depth + 1, holder);
        if (file.newest == holder)
            file.newest = newestOfIncluded_;
        file.includeAfter = newestOfIncluded_;
    }

    std::string includedPath(const std::string& written, const File& file) {
        auto path = normalizeSeparators(written);
        if (isAbsolutePath(path))
            return standardizedPath(path);
        const auto beside = standardizedPath(appendingPathComponent(deletingLastPathComponent(file.path), path));
        const auto inSkin = standardizedPath(folders_.skinFolder + path);
        return !files_.fileExists(beside) && files_.fileExists(inSkin) ? inSkin : beside;
    }

    PackSkin finished() {
        PackSkin skin;
        skin.folders = folders_;
        for (auto& entry : sections_) {
            entry.section.kind = kindOf(entry.section);
            if (entry.section.kind == PackSection::Kind::Variables)
                skin.variables = entry.section.options;
            skin.document.sectionIndex.set(entry.lines.name, skin.document.sections.size());
            skin.document.sections.push_back(std::move(entry.lines));
            skin.sections.push_back(std::move(entry.section));
        }
        resolveVariables(skin.variables);
        skin.diagnostics = diagnostics_.diagnostics();
        return skin;
    }

    /// `B=#A#` is read once, here; `B=[#A]` is read where it is used, and so is the name of the section.
    void resolveVariables(Options& variables) {
        constexpr std::string_view UserSection = "#CURRENTSECTION#";
        const Options written = variables;
        const PackVariables scope(written, folders_);
        for (const auto& [name, value, hash] : written) {
            if (value.find_first_of("#%") == std::string::npos)
                continue;
            auto text = resolveReferences(value, scope, UserSection, ReferenceKinds::Signs);
            // The resolver marks a section's name as data; here it stands for a reference that is still to come.
            const auto mark = LiteralMarks::marked(UserSection);
            for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + UserSection.size()))
                text.replace(at, mark.size(), UserSection);
            variables.set(name, std::move(text));
        }
    }

    void warn(const std::string& text, const INILine& line, const File& file) {
        diagnostics_.warning(text, SourceLocation{file.sharedPath, line.number});
    }
    void error(const std::string& text, const INILine& line, const File& file) {
        diagnostics_.error(text, SourceLocation{file.sharedPath, line.number});
    }

    FileProvider& files_;
    const PackFolders& folders_;
    /// The main file's own, whichever line they stand on, until a line that is read says otherwise.
    Options laterVariables_;
    Options variables_;
    PackVariables scope_;
    std::list<Entry> sections_;
    CaseInsensitiveDictionary<Place> places_;
    Place newestOfIncluded_;
    DiagnosticCollector diagnostics_;
    int includes_ = 0;
    std::size_t lineCount_ = 0;
    std::size_t bytes_ = 0;
    bool wasExhausted_ = false;
};

std::optional<std::string> environmentText(const char* name) {
    const char* value = std::getenv(name);
    return value && *value ? std::optional<std::string>(value) : std::nullopt;
}

/// A folder of the user's: the variable of the desktop's own, else its usual place below the home.
std::string userFolder(const char* name, const char* below) {
    return environmentText(name).value_or(environmentText("HOME").value_or("") + below);
}

bool isAction(std::string_view key) {
    while (!key.empty() && key.back() >= '0' && key.back() <= '9')
        key.remove_suffix(1);
    return hasSuffixIgnoringCase(key, "ACTION") || hasSuffixIgnoringCase(key, "COMMAND");
}

void resolveOptions(Options& options, const ReferenceScope& scope, const std::string& section) {
    const Options written = options;
    for (const auto& [key, value, hash] : written) {
        const auto kinds = isAction(key) ? ReferenceKinds::ActionAtLoad : ReferenceKinds::AtLoad;
        options.set(key, resolveReferences(value, scope, section, kinds));
    }
}

} // namespace

std::optional<std::string> PackVariables::variable(std::string_view name) const {
    if (auto value = folders_.variable(name))
        return value;
    if (equalsIgnoringCase(name, "CRLF"))
        return "\n";
    const auto* value = variables_.find(name);
    return value ? std::optional(*value) : std::nullopt;
}

std::optional<std::string> PackVariables::environment(std::string_view name) const {
    if (equalsIgnoringCase(name, "USERPROFILE") || equalsIgnoringCase(name, "HOME"))
        return environmentText("HOME");
    if (equalsIgnoringCase(name, "USERNAME") || equalsIgnoringCase(name, "USER"))
        return environmentText("USER");
    if (equalsIgnoringCase(name, "TEMP") || equalsIgnoringCase(name, "TMP"))
        return environmentText("TMPDIR").value_or("/tmp");
    if (equalsIgnoringCase(name, "APPDATA"))
        return userFolder("XDG_CONFIG_HOME", "/.config");
    if (equalsIgnoringCase(name, "LOCALAPPDATA"))
        return userFolder("XDG_DATA_HOME", "/.local/share");
    return std::nullopt;
}

std::optional<PackSkin> PackReader::read(const PackFolders& folders) const {
    return Reading(files_, folders).read();
}

std::optional<PackSkin> readPackSkin(const std::string& skinFile, std::optional<std::string_view> openedFolder,
    std::optional<std::string_view> rootOverride) {
    DiskFileProvider files;
    return PackReader(files).read(
        PackFolders::find(skinFile, openedFolder, rootOverride, PackFolders::settingsBaseOfUser()));
}

SkinConfig skinConfigAtLoad(const PackSkin& skin) {
    INIDocument resolved;
    const PackVariables scope(skin.variables, skin.folders);
    for (const auto& section : skin.sections) {
        Options options = section.kind == PackSection::Kind::Variables ? skin.variables : section.options;
        if (section.kind != PackSection::Kind::Variables && section.kind != PackSection::Kind::Other)
            resolveOptions(options, scope, section.name);
        INISection translated{section.name, {}, {}, {}};
        for (const auto& [key, value, hash] : options)
            translated.append(key, value, {});
        resolved.sectionIndex.set(section.name, resolved.sections.size());
        resolved.sections.push_back(std::move(translated));
    }
    auto config = SectionClassifier::classify(std::move(resolved), skin.folders.skinFile);
    config.rawDocument = skin.document;
    return config;
}

} // namespace Ostrel
