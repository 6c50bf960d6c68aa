#pragma once

#include <functional>
#include <span>
#include <string>

namespace Ostrel {

/// The main window as the resident process knows it: something that can be shown. Main thread.
class MainWindow {
public:
    virtual ~MainWindow() = default;
    /// Shows the window, and brings it forward when it is on the screen already.
    virtual void show() = 0;
    /// The same, with paths as if the user had chosen them in it, all at once.
    virtual void open(std::span<const std::string> paths) = 0;
    /// Lists scans of these paths if the user sees the window; else does nothing.
    virtual void scan(std::span<const std::string> paths) = 0;
    /// True from `show` on, until the user closes it.
    virtual bool isVisible() const = 0;
    std::function<void()> onVisibilityChange;
};

} // namespace Ostrel
