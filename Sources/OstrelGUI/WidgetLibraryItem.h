#pragma once

#include <memory>
#include <string>

namespace Ostrel {

/// One card of the widget library, identified by its path.
struct WidgetLibraryItem {
    std::string path;
    std::string displayName;
    std::string packageName;
    std::string relativePath;
    /// Whether the session shows it again at the next start.
    bool isRendered = false;
    /// Whether it is on the screen. A skin that did not load is rendered and does not run.
    bool isRunning = false;
    /// Why it is not shown; empty when nothing is known against it.
    std::string failure = {};
    /// A PNG, shared with the session; null when there is none. Another picture is another pointer.
    std::shared_ptr<const std::string> snapshotData = nullptr;

    friend bool operator==(const WidgetLibraryItem&, const WidgetLibraryItem&) = default;
};

} // namespace Ostrel
