#include "OstrelPlatform/Linux/Desktop/DesktopEntries.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <utility>

namespace Ostrel::DesktopEntries {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t MaxEntryBytes = 256 * 1024;

std::string environment(const char* name, const std::string& fallback) {
    const char* value = std::getenv(name);
    return value && *value ? value : fallback;
}

/// Those of the user first.
std::vector<fs::path> applicationFolders() {
    const auto home = environment("HOME", "");
    std::vector<fs::path> folders{fs::path(environment("XDG_DATA_HOME", home + "/.local/share")) / "applications"};
    const auto others = environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    for (const auto folder : splitDroppingEmpty(others, ':'))
        folders.push_back(fs::path(folder) / "applications");
    return folders;
}

/// Empty when it is no file: a pipe would be read without end.
std::string contents(const fs::path& path) {
    std::error_code failed;
    if (!fs::is_regular_file(path, failed))
        return {};
    std::ifstream file(path, std::ios::binary);
    std::string text(MaxEntryBytes, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(std::max<std::streamsize>(0, file.gcount())));
    return text;
}

/// A value of the entry's main group.
std::optional<std::string_view> value(std::string_view text, std::string_view key) {
    bool isMainGroup = false;
    for (const auto line : split(text, '\n')) {
        if (line.starts_with('['))
            isMainGroup = trimmed(line) == "[Desktop Entry]";
        const auto equals = line.find('=');
        if (isMainGroup && equals != std::string_view::npos && trimmed(line.substr(0, equals)) == key)
            return trimmed(line.substr(equals + 1));
    }
    return std::nullopt;
}

bool isProgram(const fs::path& path) {
    std::error_code failed;
    return fs::is_regular_file(path, failed) && access(path.c_str(), X_OK) == 0;
}

/// Absent when there is no such program.
std::optional<std::string> programPath(const std::string& name) {
    if (name.starts_with('/'))
        return isProgram(name) ? std::optional(name) : std::nullopt;
    const auto folders = environment("PATH", "/usr/local/bin:/usr/bin:/bin");
    for (const auto folder : splitDroppingEmpty(folders, ':')) {
        const auto path = fs::path(folder) / name;
        if (!name.empty() && isProgram(path))
            return path.string();
    }
    return std::nullopt;
}

/// The words of an "Exec" line: blanks part them, double quotes hold them together, a backslash in quotes lets the next
/// character stand for itself, a percent sign with a letter stands for something that is not given here.
std::vector<std::string> wordsOf(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool isInWord = false;
    bool isQuoted = false;
    for (std::size_t i = 0; i <= line.size(); ++i) {
        const char c = i < line.size() ? line[i] : ' ';
        const bool isEnd = i == line.size() || (!isQuoted && (c == ' ' || c == '\t'));
        if (isEnd) {
            if (isInWord)
                words.push_back(std::exchange(word, {}));
            isInWord = false;
        } else if (c == '"') {
            isQuoted = !isQuoted;
            isInWord = true;
        } else if (c == '%' && i + 1 < line.size()) {
            if (line[++i] == '%') {
                word += '%';
                isInWord = true;
            }
        } else {
            word += isQuoted && c == '\\' && i + 1 < line.size() ? line[++i] : c;
            isInWord = true;
        }
    }
    return words;
}

} // namespace

std::optional<Command> commandOfEntry(std::string_view text) {
    const auto exec = value(text, "Exec");
    if (!exec || value(text, "Type") != "Application")
        return std::nullopt;
    // The file writes a backslash as two.
    auto words = wordsOf(replacingOccurrences(*exec, "\\\\", "\\"));
    const auto program = words.empty() ? std::nullopt : programPath(words.front());
    if (!program)
        return std::nullopt;
    words.erase(words.begin());
    return Command{*program, std::move(words)};
}

std::optional<Command> commandForApplication(std::string_view name) {
    for (const auto& folder : applicationFolders()) {
        std::error_code failed;
        for (fs::directory_iterator entry(folder, failed); !failed && entry != fs::directory_iterator();
             entry.increment(failed)) {
            const auto& path = entry->path();
            if (path.extension() != ".desktop")
                continue;
            const auto text = contents(path);
            if (!equalsIgnoringCase(path.stem().string(), name)
                && !equalsIgnoringCase(value(text, "Name").value_or(""), name))
                continue;
            if (auto command = commandOfEntry(text))
                return command;
        }
    }
    return std::nullopt;
}

std::optional<Command> commandForPath(const std::string& path) {
    if (!path.starts_with('/'))
        return std::nullopt;
    if (path.ends_with(".desktop"))
        return commandOfEntry(contents(path));
    return isProgram(path) ? std::optional(Command{path, {}}) : std::nullopt;
}

} // namespace Ostrel::DesktopEntries
