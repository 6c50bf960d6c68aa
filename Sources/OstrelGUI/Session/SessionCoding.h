#pragma once

#include "OstrelGUI/Session/OstrelSessionState.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

// The session as JSON: whole, and as the change that leads from one session to the next.
namespace Ostrel {

/// {"widgets":[{"path":…,"origin":{"x":…,"y":…},"runtime":{…},"isRendered":…,"snapshotData":"<base64>"}]}; what is
/// absent is left out.
std::string encodeSession(const OstrelSessionState& state);
/// Absent when anything is missing or of another kind. Of several widgets with one path the first counts, and a picture
/// that is no base64, or empty, is none.
/// Where `json` is all of an open `file`, its pictures stay there until somebody looks at them.
std::optional<OstrelSessionState> decodeSession(
    std::string_view json, const std::shared_ptr<const FileDescriptor>& file = nullptr);
/// The older form, in which every widget was showing and none had a picture.
std::optional<OstrelSessionState> decodeLegacySession(std::string_view json);

/// What turns `from` into `to`, as one line of JSON; absent when nothing does. Only what differs is written: a moved
/// widget is a few dozen bytes, whatever else is known of it.
///
///     {"remove":["/a.ini"],"widgets":[{"path":"/b.ini","origin":{"x":5,"y":6}}]}
///
/// The widgets are the ones that changed, with their changed members, and those that are new, at the end and in order.
/// Of a run-time state "variables" and "meterVisibility" hold what was set, "runtime" replaces it.
std::optional<std::string> encodeChange(const OstrelSessionState& from, const OstrelSessionState& to);

} // namespace Ostrel
