#include "OstrelPlatform/Linux/X11/QtDesktopPanels.h"

#include <QBackingStore>
#include <QImage>
#include <QPainter>
#include <QWindow>

#include <memory>
#include <vector>

namespace Ostrel {

namespace {

class BackingStoreSurface final : public PanelSurface {
public:
    explicit BackingStoreSurface(QWindow& window)
        : window_(window)
        , store_(&window) { }

    QImage& resize(const QSize& pixels) override {
        picture_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
        return picture_;
    }

    void present(const std::vector<QRect>&) override {
        if (!window_.isExposed())
            return;
        const QRegion all(QRect(QPoint(), window_.size()));
        store_.resize(window_.size());
        store_.beginPaint(all);
        {
            QPainter painter(store_.paintDevice());
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            const double scale = window_.devicePixelRatio();
            painter.drawImage(QRectF(0, 0, picture_.width() / scale, picture_.height() / scale), picture_);
        }
        store_.endPaint();
        store_.flush(all);
    }

private:
    QWindow& window_;
    QBackingStore store_;
    QImage picture_;
};

} // namespace

void QtDesktopPanels::pin(QWindow&) { }

std::unique_ptr<PanelSurface> QtDesktopPanels::createSurface(QWindow& window) {
    return std::make_unique<BackingStoreSurface>(window);
}

} // namespace Ostrel
