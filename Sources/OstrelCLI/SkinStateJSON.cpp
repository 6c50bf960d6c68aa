#include "OstrelCLI/SkinStateJSON.h"

#include "OstrelEngine/Runtime/Skin.h"

#include <utility>

namespace Ostrel {

JSON rectJSON(const Rect& rect) {
    return JSON::array({jsonNumber(rect.x), jsonNumber(rect.y), jsonNumber(rect.width), jsonNumber(rect.height)});
}

namespace {

JSON valueJSON(const MeasureValue& value) {
    return {{"number", jsonNumber(value.numericValue)}, {"string", value.stringValue},
        {"preferString", value.preferStringValue}, {"min", jsonNumber(value.minValue)},
        {"max", jsonNumber(value.maxValue)}};
}

JSON meterJSON(Skin& skin, MeterRenderer& meter) {
    const auto values = skin.boundValues(meter);
    JSON json{{"name", meter.name()}, {"visible", skin.isMeterVisible(meter.name())},
        {"frame", rectJSON(meter.frame().rect())}, {"rect", rectJSON(meter.interactionRect(values))}};
    if (auto text = meter.displayedText(values))
        json["text"] = std::move(*text);
    return json;
}

} // namespace

JSON skinStateJSON(Skin& skin) {
    const Size size = skin.widgetSize();
    JSON json{{"size", JSON::array({jsonNumber(size.width), jsonNumber(size.height)})}, {"measures", JSON::object()},
        {"meters", JSON::array()}, {"variables", JSON::object()}};
    for (const auto& measure : skin.allMeasures())
        json["measures"][measure->name()] = valueJSON(measure->value());
    for (const auto& meter : skin.meters())
        json["meters"].push_back(meterJSON(skin, *meter));
    for (const auto& variable : skin.variables())
        json["variables"][variable.key] = variable.value;
    return json;
}

} // namespace Ostrel
