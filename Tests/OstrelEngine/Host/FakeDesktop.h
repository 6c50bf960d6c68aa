#pragma once

#include "OstrelPlatform/DesktopPanels.h"

#include <QImage>
#include <QWindow>

#include <memory>
#include <vector>

namespace Ostrel {

/// A desktop that keeps what is shown on it.
class FakeDesktop final : public DesktopPanels {
public:
    struct Screen {
        /// What has been presented so far; cleared by every resize, as a window loses its content.
        QImage shown;
        int presentations = 0;
    };

    std::vector<std::shared_ptr<Screen>> screens;
    int pinned = 0;

    void pin(QWindow& window) override { pinned += !window.isVisible(); }
    std::unique_ptr<PanelSurface> createSurface(QWindow&) override {
        screens.push_back(std::make_shared<Screen>());
        return std::make_unique<Surface>(screens.back());
    }

private:
    class Surface final : public PanelSurface {
    public:
        explicit Surface(std::shared_ptr<Screen> screen)
            : screen_(std::move(screen)) { }

        QImage& resize(const QSize& pixels) override {
            picture_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
            picture_.fill(Qt::magenta);
            screen_->shown = picture_;
            screen_->shown.detach();
            return picture_;
        }
        void present(const std::vector<QRect>& parts) override {
            ++screen_->presentations;
            for (const QRect& part : parts)
                for (int y = part.top(); y <= part.bottom(); ++y)
                    for (int x = part.left(); x <= part.right(); ++x)
                        screen_->shown.setPixel(x, y, picture_.pixel(x, y));
        }

    private:
        std::shared_ptr<Screen> screen_;
        QImage picture_;
    };
};

} // namespace Ostrel
