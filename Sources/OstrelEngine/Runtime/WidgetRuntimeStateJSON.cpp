#include "OstrelEngine/Runtime/WidgetRuntimeStateJSON.h"

#include <nlohmann/json.hpp>

namespace Ostrel {

namespace {

using nlohmann::json;

template <typename Value> std::string text(const std::map<std::string, Value>& values) {
    return json(values).dump(-1, ' ', false, json::error_handler_t::replace);
}

} // namespace

std::string encodeJSON(const WidgetRuntimeState& state) {
    return "{\"variables\":" + text(state.variables) + ",\"meterVisibility\":" + text(state.meterVisibility) + "}";
}

std::optional<WidgetRuntimeState> decodeRuntimeState(const json& object) {
    if (!object.is_object())
        return std::nullopt;
    const auto variables = object.find("variables");
    const auto visibility = object.find("meterVisibility");
    if (variables == object.end() || !variables->is_object() || visibility == object.end() || !visibility->is_object())
        return std::nullopt;
    WidgetRuntimeState state;
    for (const auto& [name, value] : variables->items()) {
        if (!value.is_string())
            return std::nullopt;
        state.variables.emplace(name, value.get_ref<const std::string&>());
    }
    for (const auto& [name, value] : visibility->items()) {
        if (!value.is_boolean())
            return std::nullopt;
        state.meterVisibility.emplace(name, value.get<bool>());
    }
    return state;
}

} // namespace Ostrel
