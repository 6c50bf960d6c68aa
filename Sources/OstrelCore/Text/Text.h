#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Text is UTF-8 throughout. Bytes that are no valid UTF-8 pass through unchanged and count as non-blank characters.
namespace Ostrel {

/// Full Unicode upper-casing in the root locale; sharp s becomes "SS". Every name of a skin compares in this form.
std::string upperCased(std::string_view text);
/// Full Unicode lower-casing in the root locale.
std::string lowerCased(std::string_view text);
/// The first letter of each word in title case, the rest in lower case. A word begins at a letter that follows no
/// letter, so digits and hyphens begin one ("2Nd") and apostrophes do not ("It's").
std::string capitalizedWords(std::string_view text);
bool isASCII(std::string_view text);

/// Whether the upper-cased forms are equal.
bool equalsIgnoringCase(std::string_view a, std::string_view b);
/// Whether the upper-cased text begins with, ends with or contains `asciiUpper`, which holds ASCII only, already in
/// upper case.
bool hasPrefixIgnoringCase(std::string_view text, std::string_view asciiUpper);
bool hasSuffixIgnoringCase(std::string_view text, std::string_view asciiUpper);
bool containsIgnoringCase(std::string_view text, std::string_view asciiUpper);

/// Whitespace: category Zs and the tab.
bool isWhitespace(char32_t c);
/// Newlines: LF, VT, FF, CR, NEL, LS, PS.
bool isNewline(char32_t c);
/// A digit or any other character that stands for a number, in every script.
bool isNumeric(char32_t c);

/// Without whitespace at both ends; a view into the argument.
std::string_view trimmedWhitespace(std::string_view text);
/// Without whitespace and newlines at both ends; a view into the argument.
std::string_view trimmed(std::string_view text);

/// Pieces between separators, as views into the argument; n separators give n + 1 pieces.
std::vector<std::string_view> split(std::string_view text, char separator);
/// The same without the empty pieces (a piece of blanks is not empty).
std::vector<std::string_view> splitDroppingEmpty(std::string_view text, char separator);

/// Every occurrence replaced, left to right, not rescanned. An empty `find` replaces nothing.
std::string replacingOccurrences(std::string_view text, std::string_view find, std::string_view replacement);
/// The same with ASCII letters of both sides compared without case.
std::string replacingOccurrencesIgnoringCase(
    std::string_view text, std::string_view find, std::string_view replacement);

/// A text of at least two bytes that begins and ends with a double quote loses these two; any other is unchanged.
std::string_view withoutDoubleQuotes(std::string_view text);

/// The character that begins at `offset` (which must be inside the text) and its length in bytes; an invalid byte
/// decodes as U+FFFD of length 1.
struct DecodedCharacter {
    char32_t value = 0;
    std::size_t length = 1;
};
DecodedCharacter decodeCharacter(std::string_view text, std::size_t offset);
void appendCharacter(std::string& text, char32_t c);
bool isValidUTF8(std::string_view text);
/// The first `count` characters as a reader counts them: a letter and its accents are one. A view into the argument.
std::string_view characterPrefix(std::string_view text, std::int64_t count);

constexpr bool isASCIIDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr char asciiUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace Ostrel
