#pragma once

#include "OstrelGUI/Session/OstrelSessionState.h"

#include <nlohmann/json_fwd.hpp>

#include <map>
#include <optional>
#include <string>
#include <string_view>

// Reading the JSON of a session, which may be anybody's.
namespace Ostrel {

struct DetachedPictures;

/// Absent for what is no JSON, and for more values or deeper ones than a session has.
std::optional<nlohmann::json> parseBounded(std::string_view text);

/// Absent when there is none.
std::optional<std::string> pathOf(const nlohmann::json& widget);
/// Sets what the object tells of a widget and leaves the rest; null tells nothing. False when a member is of another
/// kind. A picture that is no base64 is none.
bool readWidget(const nlohmann::json& widget, const DetachedPictures& pictures, OstrelWidgetState& state);
/// Adds the members of an object; false when one is of another kind.
bool readTexts(const nlohmann::json& object, std::map<std::string, std::string>& texts);
bool readTruths(const nlohmann::json& object, std::map<std::string, bool>& truths);

} // namespace Ostrel
