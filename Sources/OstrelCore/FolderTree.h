#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Ostrel {

/// Calls `visit` for everything below `directory`, hidden or not: files, folders and links, each by its path relative
/// to `directory`, in no order. Links below `directory` are not followed and folders that cannot be read are taken as
/// empty. False when `directory` itself cannot be read.
bool forEachEntryBelow(const std::string& directory, const std::function<void(std::string_view)>& visit);

} // namespace Ostrel
