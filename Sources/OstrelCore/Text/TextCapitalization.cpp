#include "OstrelCore/Text/Text.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/uchar.h>

#include <string>
#include <string_view>

namespace Ostrel {

namespace {

bool isCased(char32_t c) {
    return u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_CASED);
}

bool isCaseIgnorable(char32_t c) {
    return u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_CASE_IGNORABLE);
}

std::string titleCased(std::string_view letter) {
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    UErrorCode error = U_ZERO_ERROR;
    const icu::StringPiece source(letter.data(), static_cast<int32_t>(letter.size()));
    icu::CaseMap::utf8ToTitle("", 0, nullptr, source, sink, nullptr, error);
    return U_FAILURE(error) ? std::string(letter) : result;
}

/// The length of the word that begins with the letter at the beginning of the text.
std::size_t wordLength(std::string_view text) {
    std::size_t end = 0;
    while (end < text.size()) {
        const auto c = decodeCharacter(text, end);
        if (!isCased(c.value) && !isCaseIgnorable(c.value))
            break;
        end += c.length;
    }
    return end;
}

std::string capitalizedWord(std::string_view word) {
    const auto first = word.substr(0, decodeCharacter(word, 0).length);
    // The word is lowered as a whole, since the form of a sigma depends on the letters before it.
    return titleCased(first) + lowerCased(word).substr(lowerCased(first).size());
}

} // namespace

std::string capitalizedWords(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto c = decodeCharacter(text, 0);
        const bool startsWord = isCased(c.value);
        const auto length = startsWord ? wordLength(text) : c.length;
        result += startsWord ? capitalizedWord(text.substr(0, length)) : std::string(text.substr(0, length));
        text.remove_prefix(length);
    }
    return result;
}

} // namespace Ostrel
