#pragma once

#include <functional>
#include <stop_token>
#include <string>
#include <string_view>

namespace Ostrel {

/// Calls `visit` for everything below `directory`, hidden or not: files, folders and links, each by its path relative
/// to `directory`, in no order. Links below `directory` are not followed and folders that cannot be read are taken as
/// empty. False when `directory` itself cannot be read. A whole disk takes minutes: it ends early where `stop` asks.
bool forEachEntryBelow(
    const std::string& directory, const std::function<void(std::string_view)>& visit, const std::stop_token& stop = {});

} // namespace Ostrel
