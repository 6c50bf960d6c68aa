#include "OstrelEngine/Runtime/BracketReferences.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Runtime/ExpressionText.h"

namespace Ostrel::BracketReferences {

namespace {

/// The name that follows the bracket at `open`; empty when what follows is no name.
std::string_view nameAfter(std::string_view text, std::size_t open) {
    auto end = open + 1;
    while (end < text.size() && ExpressionText::isIdentifierContinuationByte(text[end]))
        ++end;
    return text.substr(open + 1, end - open - 1);
}

/// The property of ":P]" at the start of the text, in upper case.
std::optional<char> property(std::string_view text) {
    if (text.size() < 3 || text[0] != ':' || text[2] != ']')
        return std::nullopt;
    const char letter = asciiUpper(text[1]);
    return std::string_view("XYZWH").find(letter) != std::string_view::npos ? std::optional(letter) : std::nullopt;
}

} // namespace

std::string substituteCoordinates(std::string_view text, const CoordinateLookup& lookup) {
    std::string result;
    std::size_t copied = 0;
    auto open = text.find('[');
    while (open != std::string_view::npos) {
        const auto name = nameAfter(text, open);
        const auto behind = open + 1 + name.size();
        const auto letter = name.empty() ? std::nullopt : property(text.substr(behind));
        if (letter) {
            result.append(text, copied, open - copied);
            result += lookup(name, *letter);
            copied = behind + 3;
        }
        // A name holds no bracket, so that nothing is missed behind one that was no reference.
        open = text.find('[', letter ? copied : behind);
    }
    result.append(text, copied);
    return result;
}

std::vector<std::string_view> names(std::string_view text) {
    std::vector<std::string_view> result;
    for (auto open = text.find('['); open != std::string_view::npos; open = text.find('[', open + 1)) {
        const auto name = nameAfter(text, open);
        const auto behind = open + 1 + name.size();
        if (!name.empty() && behind < text.size() && text[behind] == ']')
            result.push_back(name);
    }
    return result;
}

} // namespace Ostrel::BracketReferences
