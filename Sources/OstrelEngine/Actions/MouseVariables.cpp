#include "OstrelEngine/Actions/MouseVariables.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>

namespace Ostrel::MouseVariables {

namespace {

double percentage(double offset, double extent) {
    return extent > 0 ? std::clamp(offset / extent * 100, 0.0, 100.0) : 0;
}

} // namespace

std::string substitute(std::string_view text, Point point, const std::optional<Rect>& source, Decimals decimals) {
    std::string result(text);
    if (text.find("$Mouse") == std::string_view::npos)
        return result;
    const Rect rect = source.value_or(Rect());
    const Point local = {point.x - rect.minX(), point.y - rect.minY()};
    const struct {
        std::string_view literal;
        double value;
    } variables[] = {
        {"$MouseX:%$", percentage(local.x, rect.maxX() - rect.minX())},
        {"$MouseY:%$", percentage(local.y, rect.maxY() - rect.minY())},
        {"$MouseX:$", local.x},
        {"$MouseY:$", local.y},
        {"$MouseX$", point.x},
        {"$MouseY$", point.y},
    };
    for (const auto& [literal, value] : variables) {
        const auto number = decimals == Decimals::none ? formatFixed(value, 0) : formatNumeric(value);
        result = replacingOccurrences(result, literal, number);
    }
    return result;
}

} // namespace Ostrel::MouseVariables
