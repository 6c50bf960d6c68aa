#include "OstrelGUI/Channel/WindowServer.h"

#include "OstrelCore/Packages/PackageCache.h"
#include "OstrelGUI/Channel/LibraryMessages.h"
#include "OstrelGUI/Channel/SharedSettings.h"
#include "OstrelGUI/WidgetLibrary.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/UserDefaults.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>

namespace Ostrel {

namespace {

/// No more than this waits to be taken before further pictures are added: they would only lie in memory, and the answer
/// to a click would have to wait behind them.
constexpr std::size_t EnoughQueued = 256 << 10;

} // namespace

WindowServer::WindowServer(
    std::unique_ptr<WindowChannel> channel, WidgetLibrary& library, UserDefaults& defaults, MainQueue& mainQueue)
    : channel_(std::move(channel))
    , library_(library)
    , defaults_(defaults)
    , mainQueue_(mainQueue) {
    channel_->onMessage = [this](const nlohmann::json& message, const std::string&) { handle(message); };
    channel_->onDrained = [this] { tell(); };
    channel_->onEnd = [this] {
        if (onEnd)
            std::exchange(onEnd, nullptr)();
    };
    library_.onLibraryItemsChange = [this] { tellLater(); };
    sendSettings();
    // The window's process may end and come back; it must not unpack again what an earlier one has unpacked.
    channel_->send(
        {{"type", "packages"}, {"packages", LibraryMessages::encodePackages(PackageCache::shared().entries())}});
    tell();
}

WindowServer::~WindowServer() {
    library_.onLibraryItemsChange = nullptr;
}

void WindowServer::show() {
    channel_->send({{"type", "show"}});
}

void WindowServer::open(std::span<const std::string> paths) {
    channel_->send({{"type", "open"}, {"paths", paths}});
}

void WindowServer::scan(std::span<const std::string> paths) {
    channel_->send({{"type", "scan"}, {"paths", paths}});
}

void WindowServer::quit() {
    channel_->send({{"type", "quit"}});
}

void WindowServer::sendSettings() {
    auto values = nlohmann::json::object();
    for (const auto key : SharedSettings::texts)
        if (auto value = defaults_.string(key))
            values[std::string(key)] = std::move(*value);
    for (const auto key : SharedSettings::switches)
        if (const auto value = defaults_.boolean(key))
            values[std::string(key)] = *value;
    channel_->send({{"type", "settings"}, {"values", std::move(values)}});
}

void WindowServer::tellLater() {
    if (std::exchange(willTell_, true))
        return;
    mainQueue_.post([this, life = std::weak_ptr(life_)] {
        if (life.expired())
            return;
        willTell_ = false;
        tell();
    });
}

void WindowServer::tell() {
    // The rest follows once this has been taken.
    if (channel_->queuedBytes() > EnoughQueued)
        return;
    const auto& items = library_.libraryItems();
    if (const auto list = feed_.list(items))
        channel_->send(*list);
    while (channel_->isOpen() && channel_->queuedBytes() <= EnoughQueued) {
        auto preview = feed_.nextPreview(items);
        if (!preview)
            return;
        const bool hasPicture = preview->picture != nullptr;
        channel_->send(
            {{"type", "preview"}, {"index", preview->index}, {"hasPicture", hasPicture}}, std::move(preview->picture));
    }
}

void WindowServer::handle(const nlohmann::json& message) {
    const auto type = LibraryMessages::text(message, "type").value_or("");
    const auto path = LibraryMessages::text(message, "path");
    if (type == "register") {
        PackageCache::shared().adopt(LibraryMessages::packages(message, "packages"));
        library_.registerDiscovered(LibraryMessages::texts(message, "paths"));
    } else if (type == "render" && path)
        library_.renderWidget(*path);
    else if (type == "launch" && path)
        library_.launchWidget(*path);
    else if (type == "unrender" && path)
        library_.unrenderWidget(*path);
    else if (type == "delete")
        deletePackage(message);
    else if (type == "set")
        change(message);
    else if (type == "visibility") {
        isWindowVisible_ = LibraryMessages::boolean(message, "isVisible").value_or(false);
        if (onVisibilityChange)
            onVisibilityChange();
    }
}

void WindowServer::change(const nlohmann::json& message) {
    const auto key = LibraryMessages::text(message, "key").value_or("");
    const auto text = LibraryMessages::text(message, "value");
    const auto isOn = LibraryMessages::boolean(message, "value");
    if (text && std::ranges::find(SharedSettings::texts, key) != std::end(SharedSettings::texts))
        defaults_.setString(key, *text);
    else if (isOn && std::ranges::find(SharedSettings::switches, key) != std::end(SharedSettings::switches))
        defaults_.setBoolean(key, *isOn);
    else
        return;
    if (onSettingChange)
        onSettingChange(key);
}

void WindowServer::deletePackage(const nlohmann::json& message) {
    const auto request = LibraryMessages::index(message, "request");
    if (!request)
        return;
    const auto answer = [this, life = std::weak_ptr(life_), request](const std::optional<std::string>& failure) {
        if (life.expired())
            return;
        nlohmann::json deleted{{"type", "deleted"}, {"request", *request}};
        if (failure)
            deleted["failure"] = *failure;
        channel_->send(deleted);
    };
    library_.deletePackage(LibraryMessages::texts(message, "paths"), answer);
}

} // namespace Ostrel
