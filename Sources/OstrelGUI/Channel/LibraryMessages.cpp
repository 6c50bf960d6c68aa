#include "OstrelGUI/Channel/LibraryMessages.h"

#include <nlohmann/json.hpp>

namespace Ostrel::LibraryMessages {

namespace {

const nlohmann::json* member(const nlohmann::json& message, std::string_view name) {
    const auto found = message.find(name);
    return found == message.end() ? nullptr : &*found;
}

} // namespace

nlohmann::json encode(const WidgetLibraryItem& item) {
    return {
        {"path", item.path},
        {"displayName", item.displayName},
        {"packageName", item.packageName},
        {"relativePath", item.relativePath},
        {"isRendered", item.isRendered},
        {"isRunning", item.isRunning},
        {"failure", item.failure},
    };
}

std::optional<WidgetLibraryItem> decodeItem(const nlohmann::json& json) {
    if (!json.is_object())
        return std::nullopt;
    auto path = text(json, "path");
    auto displayName = text(json, "displayName");
    auto packageName = text(json, "packageName");
    auto relativePath = text(json, "relativePath");
    const auto isRendered = boolean(json, "isRendered");
    const auto isRunning = boolean(json, "isRunning");
    auto failure = text(json, "failure");
    if (!path || !displayName || !packageName || !relativePath || !isRendered || !isRunning || !failure)
        return std::nullopt;
    return WidgetLibraryItem{std::move(*path), std::move(*displayName), std::move(*packageName),
        std::move(*relativePath), *isRendered, *isRunning, std::move(*failure), nullptr};
}

std::optional<std::string> text(const nlohmann::json& message, std::string_view name) {
    const auto* value = member(message, name);
    return value && value->is_string() ? std::optional(value->get<std::string>()) : std::nullopt;
}

std::optional<bool> boolean(const nlohmann::json& message, std::string_view name) {
    const auto* value = member(message, name);
    return value && value->is_boolean() ? std::optional(value->get<bool>()) : std::nullopt;
}

std::optional<std::size_t> index(const nlohmann::json& message, std::string_view name) {
    const auto* value = member(message, name);
    return value && value->is_number_unsigned() ? std::optional(value->get<std::size_t>()) : std::nullopt;
}

std::vector<std::string> texts(const nlohmann::json& message, std::string_view name) {
    std::vector<std::string> result;
    const auto* list = member(message, name);
    if (!list || !list->is_array())
        return result;
    for (const auto& value : *list)
        if (value.is_string())
            result.push_back(value.get<std::string>());
    return result;
}

nlohmann::json encodePackages(const PackageCache::Entries& entries) {
    auto encoded = nlohmann::json::object();
    for (const auto& [key, directory] : entries)
        encoded[key] = directory;
    return encoded;
}

PackageCache::Entries packages(const nlohmann::json& message, std::string_view name) {
    PackageCache::Entries result;
    const auto* encoded = member(message, name);
    if (!encoded || !encoded->is_object())
        return result;
    for (const auto& [key, directory] : encoded->items())
        if (directory.is_string())
            result.emplace(key, directory.get<std::string>());
    return result;
}

} // namespace Ostrel::LibraryMessages
