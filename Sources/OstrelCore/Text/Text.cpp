#include "OstrelCore/Text/Text.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Ostrel {

namespace {

/// How many leading characters agree: ASCII of `text`, upper-cased, with `asciiUpper`.
std::size_t commonASCIIPrefix(std::string_view text, std::string_view asciiUpperText) {
    std::size_t i = 0;
    while (i < text.size() && i < asciiUpperText.size() && asciiUpper(text[i]) == asciiUpperText[i])
        ++i;
    return i;
}

bool hasASCIIPrefix(std::string_view text, std::string_view asciiUpperPrefix) {
    return commonASCIIPrefix(text, asciiUpperPrefix) == asciiUpperPrefix.size();
}

bool isASCII(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

template <typename IsBlank> std::string_view trimmedWhere(std::string_view text, IsBlank isBlank) {
    while (!text.empty()) {
        if (isASCII(text.front())) {
            if (!isBlank(static_cast<char32_t>(text.front())))
                break;
            text.remove_prefix(1);
            continue;
        }
        const auto first = decodeCharacter(text, 0);
        if (!isBlank(first.value))
            break;
        text.remove_prefix(first.length);
    }
    while (!text.empty()) {
        if (isASCII(text.back())) {
            if (!isBlank(static_cast<char32_t>(text.back())))
                break;
            text.remove_suffix(1);
            continue;
        }
        std::size_t start = text.size() - 1;
        while (start > 0 && text.size() - start < 4 && (static_cast<unsigned char>(text[start]) & 0xC0) == 0x80)
            --start;
        const auto last = decodeCharacter(text, start);
        if (start + last.length != text.size() || !isBlank(last.value))
            break;
        text.remove_suffix(last.length);
    }
    return text;
}

template <typename Map> std::string mapped(std::string_view text, Map map) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result, static_cast<int32_t>(text.size()));
    UErrorCode error = U_ZERO_ERROR;
    map(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())), sink, error);
    return U_FAILURE(error) ? std::string(text) : result;
}

} // namespace

bool isASCII(std::string_view text) {
    constexpr std::uint64_t HighBits = 0x8080808080808080U;
    std::size_t i = 0;
    for (; i + sizeof(std::uint64_t) <= text.size(); i += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + i, sizeof word);
        if ((word & HighBits) != 0)
            return false;
    }
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(), [](char c) { return isASCII(c); });
}

std::string upperCased(std::string_view text) {
    if (!isASCII(text)) {
        return mapped(text, [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& error) {
            icu::CaseMap::utf8ToUpper("", 0, source, sink, nullptr, error);
        });
    }
    std::string result(text);
    for (char& c : result)
        c = asciiUpper(c);
    return result;
}

std::string lowerCased(std::string_view text) {
    if (!isASCII(text)) {
        return mapped(text, [](icu::StringPiece source, icu::ByteSink& sink, UErrorCode& error) {
            icu::CaseMap::utf8ToLower("", 0, source, sink, nullptr, error);
        });
    }
    std::string result(text);
    for (char& c : result)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return result;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    // The root locale maps each character by itself, so equal beginnings can be left out of the mapping.
    std::size_t i = 0;
    for (; i < a.size() && i < b.size(); ++i) {
        if (!isASCII(a[i]) || !isASCII(b[i]))
            return a.substr(i) == b.substr(i) || upperCased(a.substr(i)) == upperCased(b.substr(i));
        if (a[i] != b[i] && asciiUpper(a[i]) != asciiUpper(b[i]))
            return false;
    }
    return a.size() == b.size();
}

bool hasPrefixIgnoringCase(std::string_view text, std::string_view asciiUpperPrefix) {
    const auto common = commonASCIIPrefix(text, asciiUpperPrefix);
    if (common == asciiUpperPrefix.size())
        return true;
    // A few other letters upper-case into ASCII (long s, dotless i), so a miss is final only at an ASCII character.
    return common < text.size() && !isASCII(text[common]) && upperCased(text).starts_with(asciiUpperPrefix);
}

bool hasSuffixIgnoringCase(std::string_view text, std::string_view asciiUpperSuffix) {
    if (text.size() >= asciiUpperSuffix.size()
        && hasASCIIPrefix(text.substr(text.size() - asciiUpperSuffix.size()), asciiUpperSuffix))
        return true;
    return !isASCII(text) && upperCased(text).ends_with(asciiUpperSuffix);
}

bool containsIgnoringCase(std::string_view text, std::string_view asciiUpperText) {
    if (!isASCII(text))
        return upperCased(text).find(asciiUpperText) != std::string::npos;
    for (std::size_t i = 0; i + asciiUpperText.size() <= text.size(); ++i) {
        if (hasASCIIPrefix(text.substr(i), asciiUpperText))
            return true;
    }
    return false;
}

bool isWhitespace(char32_t c) {
    if (c < 0x80)
        return c == ' ' || c == '\t';
    return c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x202F || c == 0x205F || c == 0x3000;
}

bool isNewline(char32_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

std::string_view trimmedWhitespace(std::string_view text) {
    return trimmedWhere(text, [](char32_t c) { return isWhitespace(c); });
}

std::string_view trimmed(std::string_view text) {
    return trimmedWhere(text, [](char32_t c) { return isWhitespace(c) || isNewline(c); });
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    for (;;) {
        const auto end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return pieces;
        text.remove_prefix(end + 1);
    }
}

std::vector<std::string_view> splitDroppingEmpty(std::string_view text, char separator) {
    auto pieces = split(text, separator);
    std::erase_if(pieces, [](std::string_view piece) { return piece.empty(); });
    return pieces;
}

std::string replacingOccurrences(std::string_view text, std::string_view find, std::string_view replacement) {
    std::string result;
    if (find.empty())
        return std::string(text);
    for (;;) {
        const auto at = text.find(find);
        result.append(text.substr(0, at));
        if (at == std::string_view::npos)
            return result;
        result.append(replacement);
        text.remove_prefix(at + find.size());
    }
}

std::string replacingOccurrencesIgnoringCase(
    std::string_view text, std::string_view find, std::string_view replacement) {
    if (find.empty())
        return std::string(text);
    std::string upper(find);
    for (char& c : upper)
        c = asciiUpper(c);
    std::string result;
    std::size_t i = 0;
    while (i < text.size()) {
        if (hasASCIIPrefix(text.substr(i), upper)) {
            result.append(replacement);
            i += find.size();
        } else {
            result.push_back(text[i++]);
        }
    }
    return result;
}

std::string_view withoutDoubleQuotes(std::string_view text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        return text.substr(1, text.size() - 2);
    return text;
}

DecodedCharacter decodeCharacter(std::string_view text, std::size_t offset) {
    const auto first = static_cast<unsigned char>(text[offset]);
    if (first < 0x80)
        return {first, 1};
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    // ICU's iteration macros count in int32_t; a window of four bytes always holds a whole character.
    const auto length = static_cast<int32_t>(std::min<std::size_t>(text.size() - offset, 4));
    int32_t i = 0;
    UChar32 c = 0;
    U8_NEXT(bytes + offset, i, length, c);
    if (c < 0)
        return {0xFFFD, 1};
    return {static_cast<char32_t>(c), static_cast<std::size_t>(i)};
}

void appendCharacter(std::string& text, char32_t c) {
    char bytes[4];
    int32_t length = 0;
    UBool failed = false;
    U8_APPEND(reinterpret_cast<uint8_t*>(bytes), length, 4, static_cast<UChar32>(c), failed);
    if (!failed)
        text.append(bytes, static_cast<std::size_t>(length));
}

bool isValidUTF8(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        if (isASCII(text.substr(i, 64))) {
            i += 64;
            continue;
        }
        for (const auto end = std::min(i + 64, text.size()); i < end;) {
            const auto c = decodeCharacter(text, i);
            if (c.length == 1 && !isASCII(text[i]))
                return false;
            i += c.length;
        }
    }
    return true;
}

} // namespace Ostrel
