#include "OstrelCore/Text/URLScheme.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>

namespace Ostrel {

namespace {

bool isLetter(char c) {
    return asciiUpper(c) >= 'A' && asciiUpper(c) <= 'Z';
}

bool isSchemeCharacter(char c) {
    return isLetter(c) || isASCIIDigit(c) || c == '+' || c == '-' || c == '.';
}

} // namespace

std::string_view urlScheme(std::string_view text) {
    const auto end = std::ranges::find_if_not(text, isSchemeCharacter);
    if (end == text.end() || *end != ':' || !isLetter(text.front()))
        return {};
    return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

} // namespace Ostrel
