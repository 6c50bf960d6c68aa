#include "OstrelGUI/Channel/WindowClient.h"

#include "OstrelCore/Packages/PackageCache.h"
#include "OstrelGUI/Channel/LibraryMessages.h"

#include <nlohmann/json.hpp>

namespace Ostrel {

WindowClient::WindowClient(FileDescriptor socket, MainQueue& mainQueue)
    : channel_(std::move(socket))
    , library_(channel_, mainQueue)
    , defaults_(channel_) {
    channel_.onMessage = [this](const nlohmann::json& message, std::string blob) { handle(message, std::move(blob)); };
    channel_.onEnd = [this] {
        if (onEnd)
            onEnd();
    };
}

void WindowClient::setVisible(bool isVisible) {
    channel_.send({{"type", "visibility"}, {"isVisible", isVisible}});
}

void WindowClient::handle(const nlohmann::json& message, std::string&& blob) {
    if (defaults_.handle(message))
        return;
    if (LibraryMessages::text(message, "type") == "packages")
        return PackageCache::shared().adopt(LibraryMessages::packages(message, "packages"));
    if (!library_.handle(message, std::move(blob)))
        return handleWish(message);
    // The settings come first.
    if (!std::exchange(isReady_, true) && onReady)
        onReady();
}

void WindowClient::handleWish(const nlohmann::json& message) {
    const auto type = LibraryMessages::text(message, "type").value_or("");
    const auto paths = LibraryMessages::texts(message, "paths");
    if (type == "show" && onShow)
        onShow();
    else if (type == "open" && onOpen)
        onOpen(paths);
    else if (type == "scan" && onScan)
        onScan(paths);
    else if (type == "quit" && onEnd)
        onEnd();
}

} // namespace Ostrel
