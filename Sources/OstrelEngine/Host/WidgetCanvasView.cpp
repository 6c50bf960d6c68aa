#include "OstrelEngine/Host/WidgetCanvasView.h"

#include <QImage>

#include <cmath>

namespace Ostrel {

WidgetCanvasView::WidgetCanvasView(CanvasBackground background) {
    canvas_.setBackground(std::move(background));
}

void WidgetCanvasView::attach(std::unique_ptr<PanelSurface> surface) {
    picture_ = nullptr;
    surface_ = std::move(surface);
}

void WidgetCanvasView::setSize(const QSize& size, double scale) {
    canvas_.setSize({static_cast<double>(size.width()), static_cast<double>(size.height())});
    if (!surface_)
        return;
    scale_ = scale;
    picture_ = &surface_->resize(
        {static_cast<int>(std::ceil(size.width() * scale)), static_cast<int>(std::ceil(size.height() * scale))});
    canvas_.damageEverything();
}

void WidgetCanvasView::prepareToShow() {
    display();
    if (surface_)
        surface_->presentWhenShown();
}

void WidgetCanvasView::expose() {
    if (picture_ && !picture_->isNull())
        surface_->present({picture_->rect()});
}

void WidgetCanvasView::display() {
    if (!picture_ || picture_->isNull())
        return;
    if (const auto& parts = canvas_.repaint(*picture_, scale_); !parts.empty())
        surface_->present(parts);
}

} // namespace Ostrel
