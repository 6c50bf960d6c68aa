#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"

#include <QColor>
#include <QPainter>

#include <string>
#include <utility>

namespace Ostrel {

/// A translucent box with a softened ellipse that overhangs its frame, in a color that a test chooses. The first value
/// lifts the ellipse.
class FakeMeter final : public MeterRenderer {
public:
    explicit FakeMeter(std::string name, MeterFrame frame = {}, QColor color = Qt::red)
        : MeterRenderer(std::move(name), {})
        , color_(color) {
        setFrame(frame);
    }

    void setColor(QColor color) {
        color_ = color;
        changed_ = true;
    }
    int drawCount() const { return drawCount_; }

    void draw(QPainter& painter, MeasureValues values) override {
        ++drawCount_;
        painter.save();
        const QRectF box(frame().x, frame().y, frame().w, frame().h);
        painter.fillRect(box, color_);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(color_.lighter(), 1.5));
        const double lift = values.empty() ? 0 : values.front().numericValue;
        painter.drawEllipse(box.translated(0, -lift));
        painter.restore();
    }
    bool updateAppearance(MeasureValues values) override {
        const double lift = values.empty() ? 0 : values.front().numericValue;
        return std::exchange(changed_, false) | (std::exchange(lift_, lift) != lift);
    }
    Rect paintRect(MeasureValues) override {
        const Rect rect = frame().rect();
        return rect.united(rect.translated(0, -lift_)).expanded(2);
    }

protected:
    void optionsDidChange() override { changed_ = true; }

private:
    QColor color_;
    bool changed_ = true;
    double lift_ = 0;
    int drawCount_ = 0;
};

} // namespace Ostrel
