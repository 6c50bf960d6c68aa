#pragma once

#include "OstrelEngine/Host/WidgetCanvas.h"
#include "OstrelPlatform/DesktopPanels.h"

#include <QSize>

#include <memory>

namespace Ostrel {

/// The canvas of a panel: keeps its picture, repaints what a publication changed and sends just that to the screen.
class WidgetCanvasView {
public:
    explicit WidgetCanvasView(CanvasBackground background);
    WidgetCanvasView(const WidgetCanvasView&) = delete;
    WidgetCanvasView& operator=(const WidgetCanvasView&) = delete;

    const WidgetCanvas& canvas() const { return canvas_; }
    /// As it was last displayed; null outside a window.
    const QImage* picture() const { return picture_; }
    CanvasInput& input() { return canvas_.input(); }
    /// Takes a publication over; `display` shows it.
    void setDrawables(std::span<const Drawable> drawables) { canvas_.setDrawables(drawables); }
    /// Repaints what changed and sends it to the screen.
    void display();

    /// Puts the canvas into a window, or takes it out of its last one.
    void attach(std::unique_ptr<PanelSurface> surface);
    /// The window's size in points, each `scale` pixels. The picture is a new one until the next display.
    void setSize(const QSize& size, double scale);
    /// The window is about to be shown.
    void prepareToShow();
    /// Sends the picture as it is: the screen has lost it.
    void expose();

private:
    WidgetCanvas canvas_;
    std::unique_ptr<PanelSurface> surface_;
    /// The surface's own; null until there is one.
    QImage* picture_ = nullptr;
    double scale_ = 1;
};

} // namespace Ostrel
