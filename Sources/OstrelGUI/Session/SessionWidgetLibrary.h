#pragma once

#include "OstrelGUI/WidgetLibrary.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

class OstrelSessionController;
class WidgetManager;

/// The session of this process as the library of a window. It takes the session's place of an observer. Main thread.
class SessionWidgetLibrary final : public WidgetLibrary {
public:
    /// Both outlive the library.
    SessionWidgetLibrary(OstrelSessionController& session, WidgetManager& widgetManager);
    ~SessionWidgetLibrary() override;

    const std::vector<WidgetLibraryItem>& libraryItems() const override;
    void registerDiscovered(std::span<const std::string> paths) override;
    void renderWidget(const std::string& path) override;
    void launchWidget(const std::string& path) override;
    void unrenderWidget(const std::string& path) override;
    void deletePackage(
        std::span<const std::string> rootPaths, std::function<void(std::optional<std::string> failure)> done) override;

private:
    OstrelSessionController& session_;
    WidgetManager& widgetManager_;
};

} // namespace Ostrel
