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
    bool isRendered = false;
    /// A PNG, shared with the session; null when there is none. Another picture is another pointer.
    std::shared_ptr<const std::string> snapshotData = nullptr;

    friend bool operator==(const WidgetLibraryItem&, const WidgetLibraryItem&) = default;
};

} // namespace Ostrel
