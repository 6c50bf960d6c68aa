#include "OstrelGUI/Channel/RemoteWidgetLibrary.h"

#include "OstrelCore/Packages/PackageCache.h"
#include "OstrelGUI/Channel/LibraryMessages.h"
#include "OstrelGUI/Channel/WindowChannel.h"
#include "OstrelPlatform/MainQueue.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace Ostrel {

namespace {

/// Pictures arrive by the hundred while a large library is first told; the window need not look at each.
constexpr double PreviewDelaySeconds = 0.05;

} // namespace

RemoteWidgetLibrary::RemoteWidgetLibrary(WindowChannel& channel, MainQueue& mainQueue)
    : channel_(channel)
    , mainQueue_(mainQueue) { }

void RemoteWidgetLibrary::registerDiscovered(std::span<const std::string> paths) {
    auto packages = LibraryMessages::encodePackages(PackageCache::shared().entries());
    channel_.send({{"type", "register"}, {"paths", paths}, {"packages", std::move(packages)}});
}

void RemoteWidgetLibrary::renderWidget(const std::string& path) {
    ask("render", path);
}

void RemoteWidgetLibrary::launchWidget(const std::string& path) {
    ask("launch", path);
}

void RemoteWidgetLibrary::unrenderWidget(const std::string& path) {
    ask("unrender", path);
}

void RemoteWidgetLibrary::ask(const char* type, const std::string& path) {
    channel_.send({{"type", type}, {"path", path}});
}

void RemoteWidgetLibrary::deletePackage(
    std::span<const std::string> rootPaths, std::function<void(std::optional<std::string>)> done) {
    deletions_.emplace(++lastDeletion_, std::move(done));
    channel_.send({{"type", "delete"}, {"request", lastDeletion_}, {"paths", rootPaths}});
}

bool RemoteWidgetLibrary::handle(const nlohmann::json& message, std::string&& blob) {
    const auto type = LibraryMessages::text(message, "type").value_or("");
    if (type == "items")
        takeItems(message);
    else if (type == "changes")
        takeChanges(message);
    else if (type == "preview")
        takePreview(message, std::move(blob));
    else if (type == "deleted")
        takeDeletion(message);
    else
        return false;
    return true;
}

void RemoteWidgetLibrary::takeItems(const nlohmann::json& message) {
    std::unordered_map<std::string, std::shared_ptr<const std::string>> pictures;
    for (auto& item : items_)
        pictures.emplace(std::move(item.path), std::move(item.snapshotData));
    items_.clear();
    for (const auto& encoded : message.value("items", nlohmann::json::array())) {
        auto item = LibraryMessages::decodeItem(encoded);
        if (!item)
            continue;
        if (const auto known = pictures.find(item->path); known != pictures.end())
            item->snapshotData = known->second;
        items_.push_back(std::move(*item));
    }
    notifySoon(0);
}

void RemoteWidgetLibrary::takeChanges(const nlohmann::json& message) {
    for (const auto& change : message.value("changes", nlohmann::json::array())) {
        if (!change.is_object())
            continue;
        const auto index = LibraryMessages::index(change, "index");
        auto item = LibraryMessages::decodeItem(change.value("item", nlohmann::json()));
        if (!item || !index || *index >= items_.size())
            continue;
        item->snapshotData = items_[*index].snapshotData;
        items_[*index] = std::move(*item);
    }
    notifySoon(0);
}

void RemoteWidgetLibrary::takePreview(const nlohmann::json& message, std::string&& blob) {
    const auto index = LibraryMessages::index(message, "index");
    if (!index || *index >= items_.size())
        return;
    const bool hasPicture = LibraryMessages::boolean(message, "hasPicture").value_or(false);
    items_[*index].snapshotData = hasPicture ? std::make_shared<const std::string>(std::move(blob)) : nullptr;
    notifySoon(PreviewDelaySeconds);
}

void RemoteWidgetLibrary::takeDeletion(const nlohmann::json& message) {
    const auto request = LibraryMessages::index(message, "request");
    const auto found = request ? deletions_.find(*request) : deletions_.end();
    if (found == deletions_.end())
        return;
    const auto done = std::move(found->second);
    deletions_.erase(found);
    if (done)
        done(LibraryMessages::text(message, "failure"));
}

void RemoteWidgetLibrary::notifySoon(double seconds) {
    if (std::exchange(willNotify_, true))
        return;
    mainQueue_.postAfter(seconds, [this, life = std::weak_ptr(life_)] {
        if (life.expired())
            return;
        willNotify_ = false;
        if (onLibraryItemsChange)
            onLibraryItemsChange();
    });
}

} // namespace Ostrel
