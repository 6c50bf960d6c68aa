#pragma once

#include "OstrelEngine/Players/MediaPlayerState.h"

#include <optional>
#include <string_view>

/// The text that a running player answers with. Numbers come as text with either decimal sign; what is missing, is no
/// number or is not finite reads as 0.
namespace Ostrel::MediaPlayerPayload {

/// A JSON object. Absent when the text is none.
std::optional<MediaPlayerState> parseJSONState(std::string_view text);

/// The older form, 11 to 18 fields between "|~|". Absent when there are fewer.
std::optional<MediaPlayerState> parseLegacyDelimitedState(std::string_view text);

} // namespace Ostrel::MediaPlayerPayload
