#include "OstrelEngine/Actions/INILineEditor.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <vector>

namespace Ostrel::INILineEditor {

namespace {

using Lines = std::vector<std::string_view>;

struct LineRange {
    std::size_t begin = 0;
    std::size_t end = 0;
};

std::optional<std::size_t> indexOfSection(std::string_view name, const Lines& lines) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto found = sectionName(lines[i]);
        if (found && equalsIgnoringCase(*found, name))
            return i;
    }
    return std::nullopt;
}

std::optional<std::size_t> indexOfNextSection(std::size_t after, const Lines& lines) {
    for (std::size_t i = after + 1; i < lines.size(); ++i) {
        if (sectionName(lines[i]))
            return i;
    }
    return std::nullopt;
}

std::optional<std::size_t> indexOfKey(std::string_view name, const Lines& lines, LineRange range) {
    for (std::size_t i = range.begin; i < range.end; ++i) {
        const auto found = keyName(lines[i]);
        if (found && equalsIgnoringCase(*found, name))
            return i;
    }
    return std::nullopt;
}

std::string joined(const Lines& lines, std::string_view newline) {
    std::size_t size = 0;
    for (const auto line : lines)
        size += line.size() + newline.size();
    std::string text;
    text.reserve(size);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0)
            text.append(newline);
        text.append(lines[i]);
    }
    return text;
}

std::string_view indentation(std::string_view line) {
    return line.substr(0, std::min(line.find_first_not_of(" \t"), line.size()));
}

} // namespace

std::optional<std::string_view> sectionName(std::string_view line) {
    line = trimmed(line);
    if (line.size() <= 2 || line.front() != '[' || line.back() != ']')
        return std::nullopt;
    return trimmed(line.substr(1, line.size() - 2));
}

std::optional<std::string_view> keyName(std::string_view line) {
    line = trimmed(line);
    if (line.empty() || line.front() == ';' || line.front() == '#')
        return std::nullopt;
    const auto equals = line.find('=');
    if (equals == std::string_view::npos)
        return std::nullopt;
    const auto key = trimmed(line.substr(0, equals));
    return key.empty() ? std::nullopt : std::optional(key);
}

std::string updateINIContent(
    std::string_view content, std::string_view section, std::string_view key, std::string_view value) {
    const bool hasCRLF = content.find("\r\n") != std::string_view::npos;
    const std::string_view newline = hasCRLF ? "\r\n" : "\n";
    const std::string unified = hasCRLF ? replacingOccurrences(content, "\r\n", "\n") : std::string();
    Lines lines;
    if (!content.empty())
        lines = split(hasCRLF ? std::string_view(unified) : content, '\n');

    section = trimmed(section);
    key = trimmed(key);
    const std::string newLine = std::string(key).append("=").append(value);
    const std::string header = std::string("[").append(section).append("]");
    std::string replaced;

    const auto sectionIndex = indexOfSection(section, lines);
    if (!sectionIndex) {
        if (!lines.empty() && !trimmed(lines.back()).empty())
            lines.emplace_back();
        lines.insert(lines.end(), {header, newLine});
        return joined(lines, newline);
    }
    const auto end = indexOfNextSection(*sectionIndex, lines).value_or(lines.size());
    if (const auto keyIndex = indexOfKey(key, lines, {*sectionIndex + 1, end})) {
        replaced = std::string(indentation(lines[*keyIndex])) + newLine;
        lines[*keyIndex] = replaced;
    } else {
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(end), newLine);
    }
    return joined(lines, newline);
}

} // namespace Ostrel::INILineEditor
