#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/PositionParser.h"
#include "OstrelEngine/Meters/ColorParser.h"
#include "OstrelEngine/Meters/ShapeParser.h"
#include "OstrelEngine/Meters/TextFormatter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <vector>

using namespace Ostrel;

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// A shape may hold what is not a number, which equals nothing, itself included.
bool isSame(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool isSame(const std::optional<ShapePrimitive>& a, const std::optional<ShapePrimitive>& b) {
    if (!a || !b)
        return !a && !b;
    return a->kind == b->kind && isSame(a->rect.x, b->rect.x) && isSame(a->rect.y, b->rect.y)
        && isSame(a->rect.width, b->rect.width) && isSame(a->rect.height, b->rect.height)
        && isSame(a->cornerRadius, b->cornerRadius) && isSame(a->strokeWidth, b->strokeWidth)
        && a->fillColor == b->fillColor && a->strokeColor == b->strokeColor;
}

bool isShare(double value) {
    return value >= 0 && value <= 1;
}

} // namespace

/// The texts of a meter's options, one a line: a template, its values, a shape, a color and a position. What parses
/// parses the same with blanks around it, and no text grows without end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const auto lines = split(input, '\n');
    std::vector<MeasureValue> values;
    // A meter is bound to ten at most.
    for (const auto line : std::span(lines).first(std::min<std::size_t>(lines.size(), 10)))
        values.push_back(
            {static_cast<double>(line.size()) * 1e5, std::string(line.substr(line.size() / 2)), false, 0, 9});
    Options options;
    options.set("NumOfDecimals", std::string(lines.back()));
    options.set("AutoScale", std::string(lines.front()));
    const auto text = TextFormatter::format(lines.front(), values, TextFormatter::numberStyle(options));
    require(text.size() <= std::max<std::size_t>(1 << 20, size));
    TextFormatter::applyCase(text, "Proper");

    for (const auto line : lines) {
        const std::string padded = "\t " + std::string(line) + " \t";
        require(isSame(ShapeParser::parseShape(line), ShapeParser::parseShape(padded)));
        const auto color = ColorParser::parse(line);
        require(color == ColorParser::parse(padded));
        require(
            !color || (isShare(color->red) && isShare(color->green) && isShare(color->blue) && isShare(color->alpha)));
        const auto position = PositionParser::parsePosition(line);
        require(position.has_value() == PositionParser::parsePosition(padded).has_value());
    }
    return 0;
}
