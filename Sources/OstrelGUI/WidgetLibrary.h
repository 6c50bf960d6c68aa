#pragma once

#include "OstrelGUI/WidgetLibraryItem.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Ostrel {

/// What the main window sees and asks of the widgets. The window lives in a process of its own, so that its toolkit
/// costs nothing until it is wanted: here the session answers, there the far end of a channel. Main thread.
class WidgetLibrary {
public:
    virtual ~WidgetLibrary() = default;

    /// Sorted by package, then name.
    virtual const std::vector<WidgetLibraryItem>& libraryItems() const = 0;
    /// After every change of the items. One observer.
    std::function<void()> onLibraryItemsChange;

    /// Adds skins that are not known yet, with all others of their packs, not rendered.
    virtual void registerDiscovered(std::span<const std::string> paths) = 0;
    /// Shows the widget where it stood last, as it was.
    virtual void renderWidget(const std::string& path) = 0;
    /// Shows the widget anew: at its default place, without what it changed at run time.
    virtual void launchWidget(const std::string& path) = 0;
    virtual void unrenderWidget(const std::string& path) = 0;
    /// Removes packs from disk for good. `done` is told what went wrong, as a sentence for the user, or absent.
    virtual void deletePackage(
        std::span<const std::string> rootPaths, std::function<void(std::optional<std::string> failure)> done)
        = 0;
};

} // namespace Ostrel
