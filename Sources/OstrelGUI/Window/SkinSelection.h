#pragma once

#include <span>
#include <string>

/// What the user may choose to open.
namespace Ostrel::SkinSelection {

/// A folder that exists, or a name that ends like a skin's or a package's.
bool isValidSelection(const std::string& path);
/// One skin file alone is shown right away; folders and packages only fill the lists.
bool shouldAutoRenderSelection(std::span<const std::string> paths);

} // namespace Ostrel::SkinSelection
