#include "OstrelCLI/SkinStateJSON.h"

#include "OstrelEngine/Runtime/SkinRuntime.h"

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

JSON meterJSON(SkinRuntime& runtime, MeterRenderer& meter) {
    const auto values = runtime.boundValues(meter);
    JSON json{{"name", meter.name()}, {"visible", runtime.isMeterVisible(meter.name())},
        {"frame", rectJSON(meter.frame().rect())}, {"rect", rectJSON(meter.interactionRect(values))}};
    if (auto text = meter.displayedText(values))
        json["text"] = std::move(*text);
    return json;
}

} // namespace

JSON skinStateJSON(SkinRuntime& runtime) {
    const Size size = runtime.widgetSize();
    JSON json{{"size", JSON::array({jsonNumber(size.width), jsonNumber(size.height)})}, {"measures", JSON::object()},
        {"meters", JSON::array()}, {"variables", JSON::object()}};
    for (const auto& measure : runtime.allMeasures())
        json["measures"][measure->name()] = valueJSON(measure->value());
    for (const auto& meter : runtime.meters())
        json["meters"].push_back(meterJSON(runtime, *meter));
    for (const auto& variable : runtime.variables())
        json["variables"][variable.key] = variable.value;
    return json;
}

} // namespace Ostrel
