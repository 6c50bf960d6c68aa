#include "OstrelEngine/Host/WidgetCanvas.h"

#include "OstrelEngine/Host/VectorState.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

namespace Ostrel {

namespace {

bool haveSameMeters(std::span<const Drawable> a, std::span<const Drawable> b) {
    return std::ranges::equal(a, b, [](const Drawable& x, const Drawable& y) { return x.meter == y.meter; });
}

} // namespace

void WidgetCanvas::setSize(Size size) {
    if (size == size_)
        return;
    size_ = size;
    damageEverything();
}

void WidgetCanvas::setBackground(CanvasBackground background) {
    background_ = std::move(background);
    damageEverything();
}

void WidgetCanvas::damageEverything() {
    damage_.addEverything();
    underlay_.drop();
    restartedAfter_ = repaintCount_;
}

void WidgetCanvas::setDrawables(std::span<const Drawable> drawables) {
    if (haveSameMeters(drawables_, drawables))
        takeOverInPlace(drawables);
    else
        takeOverAnew(drawables);
}

void WidgetCanvas::takeOverInPlace(std::span<const Drawable> drawables) {
    for (std::size_t i = 0; i < drawables.size(); ++i) {
        // Assigned into the strings that are there: a steady publication allocates nothing.
        drawables_[i].values = drawables[i].values;
        const bool changed = drawables_[i].meter->updateAppearance(drawables_[i].values);
        note(i, changed ? Change::Look : Change::None);
    }
}

void WidgetCanvas::note(std::size_t index, Change change) {
    auto& [meter, values] = drawables_[index];
    auto& appearance = appearances_[index];
    const bool stays = meter->frame() == appearance.frame;
    if (change == Change::None && stays)
        return;
    const Appearance before = std::exchange(appearance, {meter->frame(), meter->paintRect(values), repaintCount_});
    if (const auto part = stays && change == Change::Look ? meter->changedPart() : std::nullopt) {
        damage_.add(*part);
        return;
    }
    damage_.add(before.paintRect);
    damage_.add(appearance.paintRect);
}

void WidgetCanvas::takeOverAnew(std::span<const Drawable> drawables) {
    std::unordered_map<const MeterRenderer*, std::size_t> before;
    for (std::size_t i = 0; i < drawables_.size(); ++i)
        before.emplace(drawables_[i].meter.get(), i);
    const auto oldAppearances = std::exchange(appearances_, {});
    underlay_.drop();
    drawables_.assign(drawables.begin(), drawables.end());

    // Meters that stay keep their order as a rule; one that is found behind a later one has changed its layer.
    std::size_t next = 0;
    for (std::size_t i = 0; i < drawables_.size(); ++i) {
        auto& [meter, values] = drawables_[i];
        const bool changed = meter->updateAppearance(values);
        const auto old = before.find(meter.get());
        if (old == before.end()) {
            appearances_.push_back({meter->frame(), meter->paintRect(values), repaintCount_});
            damage_.add(appearances_.back().paintRect);
            continue;
        }
        appearances_.push_back(oldAppearances[old->second]);
        note(i, old->second < next ? Change::Layer : changed ? Change::Look : Change::None);
        next = std::max(next, old->second + 1);
        before.erase(old);
    }
    for (const auto& [meter, index] : before)
        damage_.add(oldAppearances[index].paintRect);
}

const std::vector<QRect>& WidgetCanvas::repaint(QImage& picture, double scale) {
    const auto& stale = damage_.take(scale, picture.size());
    if (stale.empty())
        return stale;
    pixelRects_.clear();
    for (const auto& appearance : appearances_)
        pixelRects_.push_back(pixelRect(appearance.paintRect, scale, picture.size()));
    updateUnderlay(picture.size(), scale);
    {
        QPainter painter(&picture);
        for (const auto& pixels : stale)
            paint(painter, pixels, scale);
    }
    clearVectorState();
    ++repaintCount_;
    return stale;
}

/// Only for what takes longer to paint than to copy.
void WidgetCanvas::updateUnderlay(const QSize& bounds, double scale) {
    const auto settled = settledCount();
    if (underlay_.holds(settled, bounds, scale))
        return;
    underlay_.drop();
    const auto end = drawables_.begin() + static_cast<std::ptrdiff_t>(settled);
    const bool isWorthIt = std::any_of(
        drawables_.begin(), end, [](const Drawable& drawable) { return !drawable.meter->isCheapToDraw(); });
    if (!isWorthIt)
        return;
    QPainter painter(&underlay_.begin(settled, bounds, scale));
    const QRect everything(QPoint(0, 0), bounds);
    background_.paint(painter, everything, size_, scale);
    paintDrawables(painter, everything, scale, 0, settled);
}

/// All that have stood still long enough, from the lowest on.
std::size_t WidgetCanvas::settledCount() const {
    const auto moving = std::ranges::find_if(appearances_, [this](const Appearance& appearance) {
        const auto since = std::max(appearance.changedAfter, restartedAfter_);
        return repaintCount_ - since < CanvasUnderlay::SettlingRepaints;
    });
    return static_cast<std::size_t>(moving - appearances_.begin());
}

void WidgetCanvas::paint(QPainter& painter, const QRect& pixels, double scale) {
    painter.resetTransform();
    painter.setClipRect(pixels);
    if (underlay_.count() > 0)
        underlay_.copyTo(painter, pixels);
    else
        background_.paint(painter, pixels, size_, scale);
    paintDrawables(painter, pixels, scale, underlay_.count(), drawables_.size());
}

void WidgetCanvas::paintDrawables(
    QPainter& painter, const QRect& pixels, double scale, std::size_t begin, std::size_t end) {
    painter.scale(scale, scale);
    for (std::size_t i = begin; i < end; ++i)
        if (pixelRects_[i].intersects(pixels))
            drawables_[i].meter->draw(painter, drawables_[i].values);
}

} // namespace Ostrel
