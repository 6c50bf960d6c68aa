#pragma once

#include <string_view>

/// Keys of the user's preferences.
namespace Ostrel::OstrelPreferenceKey {

/// Boolean, false when unset.
inline constexpr std::string_view reverseCommandScrollDirection = "reverseCommandScrollDirection";

} // namespace Ostrel::OstrelPreferenceKey
