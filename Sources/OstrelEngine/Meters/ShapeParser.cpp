#include "OstrelEngine/Meters/ShapeParser.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/PositionParser.h"
#include "OstrelEngine/Meters/ColorParser.h"

#include <array>

namespace Ostrel::ShapeParser {

namespace {

constexpr std::array ShapeKeys = {"Shape"_key, "Shape2"_key, "Shape3"_key, "Shape4"_key, "Shape5"_key, "Shape6"_key,
    "Shape7"_key, "Shape8"_key, "Shape9"_key, "Shape10"_key, "Shape11"_key, "Shape12"_key, "Shape13"_key, "Shape14"_key,
    "Shape15"_key, "Shape16"_key, "Shape17"_key, "Shape18"_key, "Shape19"_key, "Shape20"_key};

/// What follows the keyword; characters are counted, since a letter outside ASCII may have matched.
std::string_view afterKeyword(std::string_view text, std::string_view keyword) {
    for (std::size_t i = 0; i < keyword.size() && !text.empty(); ++i)
        text.remove_prefix(decodeCharacter(text, 0).length);
    return trimmed(text);
}

std::vector<double> numbersAfter(std::string_view text, std::string_view keyword) {
    std::vector<double> numbers;
    for (const auto piece : split(afterKeyword(text, keyword), ','))
        numbers.push_back(PositionParser::parseDimension(trimmed(piece)));
    return numbers;
}

std::optional<ShapePrimitive> parseRectangle(std::string_view first) {
    const auto numbers = numbersAfter(first, "RECTANGLE");
    if (numbers.size() < 4)
        return std::nullopt;
    ShapePrimitive shape;
    shape.rect = {numbers[0], numbers[1], numbers[2], numbers[3]};
    shape.cornerRadius = numbers.size() > 4 ? numbers[4] : 0;
    return shape;
}

std::optional<ShapePrimitive> parseEllipse(std::string_view first) {
    const auto numbers = numbersAfter(first, "ELLIPSE");
    if (numbers.size() < 3)
        return std::nullopt;
    const double radiusX = numbers[2];
    const double radiusY = numbers.size() > 3 ? numbers[3] : radiusX;
    ShapePrimitive shape;
    shape.kind = ShapeKind::ellipse;
    shape.rect = {numbers[0] - radiusX, numbers[1] - radiusY, 2 * radiusX, 2 * radiusY};
    return shape;
}

std::optional<ShapePrimitive> parseKind(std::string_view first) {
    if (hasPrefixIgnoringCase(first, "RECTANGLE"))
        return parseRectangle(first);
    if (hasPrefixIgnoringCase(first, "ELLIPSE"))
        return parseEllipse(first);
    return std::nullopt;
}

void applyModifier(ShapePrimitive& shape, std::string_view modifier) {
    if (hasPrefixIgnoringCase(modifier, "FILL COLOR")) {
        shape.fillColor = ColorParser::parse(afterKeyword(modifier, "FILL COLOR"));
    } else if (hasPrefixIgnoringCase(modifier, "STROKE COLOR")) {
        shape.strokeColor = ColorParser::parse(afterKeyword(modifier, "STROKE COLOR"));
    } else if (hasPrefixIgnoringCase(replacingOccurrences(modifier, " ", ""), "STROKEWIDTH")) {
        const auto joined = replacingOccurrencesIgnoringCase(modifier, "StrokeWidth", "");
        const auto width = replacingOccurrencesIgnoringCase(joined, "Stroke Width", "");
        shape.strokeWidth = PositionParser::parseDimension(trimmed(width));
    }
}

} // namespace

std::optional<ShapePrimitive> parseShape(std::string_view text) {
    std::optional<ShapePrimitive> shape;
    for (const auto untrimmed : split(text, '|')) {
        const auto piece = trimmed(untrimmed);
        if (piece.empty())
            continue;
        if (shape)
            applyModifier(*shape, piece);
        else if (shape = parseKind(piece); !shape)
            return std::nullopt;
    }
    return shape;
}

std::vector<ShapePrimitive> parseShapes(const Options& options) {
    std::vector<ShapePrimitive> shapes;
    for (const auto& key : ShapeKeys) {
        if (const auto text = option(options, key)) {
            if (const auto shape = parseShape(*text))
                shapes.push_back(*shape);
        }
    }
    return shapes;
}

std::optional<Rect> bounds(const std::vector<ShapePrimitive>& shapes) {
    std::optional<Rect> result;
    for (const auto& shape : shapes)
        result = result ? result->united(shape.rect) : shape.rect;
    return result;
}

} // namespace Ostrel::ShapeParser
