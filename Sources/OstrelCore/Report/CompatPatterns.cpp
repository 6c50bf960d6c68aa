#include "OstrelCore/Report/CompatPatterns.h"

#include "OstrelCore/Text/Text.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace Ostrel::CompatPatterns {

namespace {

constexpr std::string_view Extension = ".EXE";

bool isASCIILetter(char c) {
    const char upper = asciiUpper(c);
    return upper >= 'A' && upper <= 'Z';
}

bool isWordCharacter(char32_t c) {
    if (c < 0x80)
        return (c >= '0' && c <= '9') || c == '_' || isASCIILetter(static_cast<char>(c));
    const auto point = static_cast<UChar32>(c);
    const auto category = U_GET_GC_MASK(point);
    return u_hasBinaryProperty(point, UCHAR_ALPHABETIC) || (category & (U_GC_M_MASK | U_GC_ND_MASK | U_GC_PC_MASK)) != 0
        || c == 0x200C || c == 0x200D;
}

/// Belongs to the character before it, so no word begins or ends in front of it.
bool isCombining(char32_t c) {
    const auto point = static_cast<UChar32>(c);
    return c >= 0x80 && (u_hasBinaryProperty(point, UCHAR_GRAPHEME_EXTEND) || u_charType(point) == U_FORMAT_CHAR);
}

bool endsRun(char32_t c) {
    return c == '"' || c == '\'' || u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_WHITE_SPACE);
}

/// Where the character before `end` begins; `end` is above 0.
std::size_t previousStart(std::string_view text, std::size_t end) {
    std::size_t start = end - 1;
    while (start > 0 && end - start < 4 && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80)
        --start;
    return start + decodeCharacter(text, start).length == end ? start : end - 1;
}

/// Whether the character before `offset`, combining ones passed over, is part of a word.
bool isWordBefore(std::string_view text, std::size_t offset) {
    while (offset > 0) {
        offset = previousStart(text, offset);
        const auto c = decodeCharacter(text, offset).value;
        if (!isCombining(c))
            return isWordCharacter(c);
    }
    return false;
}

bool isWordBoundary(std::string_view text, std::size_t offset) {
    if (offset == text.size())
        return isWordBefore(text, offset);
    const auto next = decodeCharacter(text, offset).value;
    return !isCombining(next) && isWordCharacter(next) != isWordBefore(text, offset);
}

/// Whether a word begins or ends at a character of the run without blanks and quotes that ends at `end`.
bool hasBoundaryInRunBefore(std::string_view text, std::size_t end) {
    while (end > 0) {
        const auto start = previousStart(text, end);
        if (endsRun(decodeCharacter(text, start).value))
            return false;
        if (isWordBoundary(text, start))
            return true;
        end = start;
    }
    return false;
}

/// The next ".exe" in any case at or after `from`.
std::size_t findExtension(std::string_view text, std::size_t from) {
    for (auto at = text.find('.', from); at != std::string_view::npos; at = text.find('.', at + 1)) {
        if (hasPrefixIgnoringCase(text.substr(at, Extension.size()), Extension))
            return at;
    }
    return std::string_view::npos;
}

} // namespace

bool containsExecutable(std::string_view value) {
    const auto firstQuote = value.find('"');
    auto at = findExtension(value, 0);
    for (; at != std::string_view::npos; at = findExtension(value, at + 1)) {
        const auto end = at + Extension.size();
        // Whatever stands between the extension and the last quote before it belongs to the quoted text.
        if (firstQuote < at && value.substr(end).starts_with('"'))
            return true;
        if (isWordBoundary(value, end) && hasBoundaryInRunBefore(value, at))
            return true;
    }
    return false;
}

bool containsDrivePath(std::string_view value) {
    for (auto at = value.find(":\\"); at != std::string_view::npos; at = value.find(":\\", at + 1)) {
        if (at > 0 && isASCIILetter(value[at - 1]))
            return true;
    }
    return false;
}

bool containsEnvironmentVariable(std::string_view value) {
    for (auto open = value.find('%'); open != std::string_view::npos;) {
        const auto close
            = std::find_if_not(value.begin() + static_cast<std::ptrdiff_t>(open) + 1, value.end(), isASCIILetter)
            - value.begin();
        const auto end = static_cast<std::size_t>(close);
        if (end < value.size() && value[end] == '%' && end > open + 1)
            return true;
        open = value.find('%', end);
    }
    return false;
}

} // namespace Ostrel::CompatPatterns
