#pragma once

#include <memory>
#include <vector>

class QImage;
class QRect;
class QSize;
class QWindow;

namespace Ostrel {

/// The picture of one panel and its way to the screen. It lives no longer than the window it was made for. Main thread.
class PanelSurface {
public:
    virtual ~PanelSurface() = default;
    /// Gives the panel a new picture of that many pixels, ARGB with premultiplied alpha and of undefined content. It
    /// is good until the next call, and null when there is no memory for it.
    virtual QImage& resize(const QSize& pixels) = 0;
    /// The picture as it is now is what the window shows from its first moment on the screen, where that can be had.
    virtual void presentWhenShown() { }
    /// Shows these parts of the picture. Nothing is waited for; a window that is not on the screen shows nothing.
    virtual void present(const std::vector<QRect>& parts) = 0;
};

/// How the window system keeps a window on the desktop. Main thread.
class DesktopPanels {
public:
    virtual ~DesktopPanels() = default;
    /// Makes a window that has been created and not been shown a part of the desktop: below normal windows, on every
    /// workspace, in no task bar, pager or window switcher, and never given the keyboard.
    virtual void pin(QWindow& window) = 0;
    virtual std::unique_ptr<PanelSurface> createSurface(QWindow& window) = 0;
};

} // namespace Ostrel
