#include "OstrelCore/Documents/INILines.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Ostrel {

namespace {

/// Whether a newline character may be among eight bytes: whether one is below 0x0E or not ASCII.
bool mayHoldNewline(const char* bytes) {
    constexpr std::uint64_t Ones = 0x0101010101010101U;
    constexpr std::uint64_t HighBits = 0x80 * Ones;
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return (((word - 0x0E * Ones) | word) & HighBits) != 0;
}

/// Bytes of the newline character at `offset`, 0 when there is another character.
std::size_t newlineLength(std::string_view text, std::size_t offset) {
    const auto first = static_cast<unsigned char>(text[offset]);
    if (first >= 0x0A && first <= 0x0D)
        return 1;
    if (first != 0xC2 && first != 0xE2)
        return 0;
    const auto rest = text.substr(offset);
    if (rest.starts_with("\xC2\x85"))
        return 2;
    return rest.starts_with("\xE2\x80\xA8") || rest.starts_with("\xE2\x80\xA9") ? 3 : 0;
}

/// The offset of the first newline character; the size of the text when there is none.
std::size_t findNewline(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        if (i + 8 <= text.size() && !mayHoldNewline(text.data() + i)) {
            i += 8;
            continue;
        }
        for (const auto end = std::min(i + 8, text.size()); i < end; ++i) {
            if (newlineLength(text, i) != 0)
                return i;
        }
    }
    return i;
}

/// The name between the brackets; empty when there is none.
std::string_view sectionName(std::string_view line) {
    const auto end = line.find(']');
    return end == std::string_view::npos ? std::string_view() : line.substr(1, end - 1);
}

void appendLine(std::vector<INILine>& lines, std::string_view text, int number) {
    if (text.empty())
        return;
    if (text.front() == ';')
        lines.push_back({text, number, INILineKind::Comment});
    else if (text.front() != '[')
        lines.push_back({text, number, INILineKind::Key});
    else if (const auto name = sectionName(text); !name.empty())
        lines.push_back({name, number, INILineKind::SectionHead});
}

} // namespace

std::vector<INILine> readLines(std::string_view text) {
    constexpr std::size_t UsualLineSize = 24;
    std::vector<INILine> lines;
    lines.reserve(text.size() / UsualLineSize);
    for (int number = 1;; ++number) {
        const auto end = findNewline(text);
        appendLine(lines, trimmedWhitespace(text.substr(0, end)), number);
        if (end == text.size())
            return lines;
        text.remove_prefix(end + newlineLength(text, end));
    }
}

std::optional<INIKeyLine> splitKeyLine(std::string_view line) {
    const auto sign = line.find('=');
    if (sign == std::string_view::npos)
        return std::nullopt;
    return INIKeyLine{trimmedWhitespace(line.substr(0, sign)), stripQuotes(trimmedWhitespace(line.substr(sign + 1)))};
}

std::string_view stripQuotes(std::string_view value) {
    if (value.size() < 2 || (value.front() != '"' && value.front() != '\'') || value.back() != value.front())
        return value;
    const auto inner = value.substr(1, value.size() - 2);
    return inner.find(value.front()) == std::string_view::npos ? inner : value;
}

} // namespace Ostrel
