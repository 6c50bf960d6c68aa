#pragma once

#include "OstrelCore/Packages/PackageCache.h"
#include "OstrelGUI/WidgetLibraryItem.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How library items and the parts of messages are written as JSON, and read from a peer that may send anything.
namespace Ostrel::LibraryMessages {

/// All but the picture.
nlohmann::json encode(const WidgetLibraryItem& item);
/// Absent when a field is missing or of another kind.
std::optional<WidgetLibraryItem> decodeItem(const nlohmann::json& json);

/// The member of that name; absent when there is none or it is of another kind.
std::optional<std::string> text(const nlohmann::json& message, std::string_view name);
std::optional<bool> boolean(const nlohmann::json& message, std::string_view name);
std::optional<std::size_t> index(const nlohmann::json& message, std::string_view name);
/// What is no text in the list is left out; empty when there is no list.
std::vector<std::string> texts(const nlohmann::json& message, std::string_view name);

/// The packages that have been unpacked, as a member of a message.
nlohmann::json encodePackages(const PackageCache::Entries& entries);
/// Empty when there is no such member.
PackageCache::Entries packages(const nlohmann::json& message, std::string_view name);

} // namespace Ostrel::LibraryMessages
