#pragma once

#include "OstrelEngine/Runtime/WidgetRuntimeState.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>

namespace Ostrel {

/// An object of the two members "variables" and "meterVisibility", in this order. Bytes that are no UTF-8 become
/// U+FFFD.
std::string encodeJSON(const WidgetRuntimeState& state);
/// Absent when a member is missing or anything is of another kind; further members do not count.
std::optional<WidgetRuntimeState> decodeRuntimeState(const nlohmann::json& json);

} // namespace Ostrel
