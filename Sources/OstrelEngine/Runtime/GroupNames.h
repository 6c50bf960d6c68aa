#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Ostrel::GroupNames {

/// Trimmed and upper-cased: the form in which group names compare.
std::string normalizedGroupName(std::string_view text);
/// The groups that a "Group" option names, normalized, in order.
std::vector<std::string> parseGroups(std::string_view text);

} // namespace Ostrel::GroupNames
