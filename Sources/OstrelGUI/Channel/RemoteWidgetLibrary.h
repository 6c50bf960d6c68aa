#pragma once

#include "OstrelGUI/WidgetLibrary.h"

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

class MainQueue;
class WindowChannel;

/// The library as the window's process has it: what the channel told last, and requests down the channel. When the far
/// end is gone, requests come to nothing.
class RemoteWidgetLibrary final : public WidgetLibrary {
public:
    /// Both outlive the library.
    RemoteWidgetLibrary(WindowChannel& channel, MainQueue& mainQueue);

    const std::vector<WidgetLibraryItem>& libraryItems() const override { return items_; }
    void registerDiscovered(std::span<const std::string> paths) override;
    void renderWidget(const std::string& path) override;
    void launchWidget(const std::string& path) override;
    void unrenderWidget(const std::string& path) override;
    void deletePackage(
        std::span<const std::string> rootPaths, std::function<void(std::optional<std::string> failure)> done) override;

    /// Takes the messages that are about the library. False for all others.
    bool handle(const nlohmann::json& message, std::string&& blob);

private:
    void ask(const char* type, const std::string& path);
    void takeItems(const nlohmann::json& message);
    void takeChanges(const nlohmann::json& message);
    void takePreview(const nlohmann::json& message, std::string&& blob);
    void takeDeletion(const nlohmann::json& message);
    void notifySoon(double seconds);

    WindowChannel& channel_;
    MainQueue& mainQueue_;
    std::vector<WidgetLibraryItem> items_;
    std::map<std::size_t, std::function<void(std::optional<std::string>)>> deletions_;
    std::size_t lastDeletion_ = 0;
    bool willNotify_ = false;
    /// Expires with the library.
    std::shared_ptr<void> life_ = std::make_shared<int>();
};

} // namespace Ostrel
