#include "OstrelEngine/Meters/ColorParser.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <array>

namespace Ostrel::ColorParser {

std::optional<Color> parse(std::string_view text) {
    text = trimmedWhitespace(text);
    std::array<double, 4> components = {0, 0, 0, 1};
    std::size_t count = 0;
    while (!text.empty()) {
        const auto end = std::min(text.find(','), text.size());
        const auto piece = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (piece.empty())
            continue;
        const auto number = parseInteger(trimmedWhitespace(piece));
        if (!number || count == components.size())
            return std::nullopt;
        components[count++] = static_cast<double>(std::clamp<std::int64_t>(*number, 0, 255)) / 255.0;
    }
    if (count < 3)
        return std::nullopt;
    return Color{components[0], components[1], components[2], components[3]};
}

Color parse(std::optional<std::string_view> text, const Color& defaultColor) {
    return text ? parse(*text).value_or(defaultColor) : defaultColor;
}

} // namespace Ostrel::ColorParser
