#pragma once

#include "OstrelEngine/Host/CanvasBackground.h"
#include "OstrelEngine/Host/CanvasDamage.h"
#include "OstrelEngine/Host/CanvasInput.h"
#include "OstrelEngine/Host/CanvasUnderlay.h"
#include "OstrelEngine/Meters/MeterProtocol.h"

#include <span>
#include <vector>

class QImage;
class QPainter;

namespace Ostrel {

/// All that a widget shows, without a window: its background and above it the last publication, in order. It knows
/// which pixels a publication changed and repaints no others; the picture is then the same, bit for bit, as one that is
/// painted anew. Main thread.
class WidgetCanvas {
public:
    WidgetCanvas() = default;
    WidgetCanvas(const WidgetCanvas&) = delete;
    WidgetCanvas& operator=(const WidgetCanvas&) = delete;

    Size size() const { return size_; }
    void setSize(Size size);
    void setBackground(CanvasBackground background);

    const std::vector<Drawable>& drawables() const { return drawables_; }
    /// Takes a publication over; what looks different from the one before it is damage.
    void setDrawables(std::span<const Drawable> drawables);

    /// What the pointer and the input field do to what is shown.
    CanvasInput& input() { return input_; }

    /// Everything is stale: the picture is a new one.
    void damageEverything();
    /// Paints the damaged part of the picture, which shows the widget at `scale` pixels a point, and gives the
    /// rectangles that it painted; they are good until the next repaint.
    const std::vector<QRect>& repaint(QImage& picture, double scale);

private:
    /// What a drawable looked like when it was last painted, at its place in the list.
    struct Appearance {
        MeterFrame frame;
        Rect paintRect;
        /// The number of the repaint before its last change.
        std::size_t changedAfter = 0;
    };
    enum class Change { None, Look, Layer };

    void takeOverInPlace(std::span<const Drawable> drawables);
    void takeOverAnew(std::span<const Drawable> drawables);
    void note(std::size_t index, Change change);
    void updateUnderlay(const QSize& bounds, double scale);
    std::size_t settledCount() const;
    void paint(QPainter& painter, const QRect& pixels, double scale);
    void paintDrawables(QPainter& painter, const QRect& pixels, double scale, std::size_t begin, std::size_t end);

    Size size_;
    CanvasBackground background_;
    std::vector<Drawable> drawables_;
    CanvasInput input_;
    /// One for each of the drawables.
    std::vector<Appearance> appearances_;
    CanvasDamage damage_;
    CanvasUnderlay underlay_;
    std::size_t repaintCount_ = 0;
    /// The number of the repaint before the picture was last another.
    std::size_t restartedAfter_ = 0;
    /// Where each of the drawables paints, for the length of a repaint.
    std::vector<QRect> pixelRects_;
};

} // namespace Ostrel
