#include "OstrelEngine/Host/WidgetCanvas.h"

#include "OstrelEngine/Host/FakeMeter.h"
#include "OstrelEngine/Host/PictureDifference.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace Ostrel {
namespace {

QImage newPicture(Size size, double scale) {
    QImage picture(static_cast<int>(size.width * scale), static_cast<int>(size.height * scale),
        QImage::Format_ARGB32_Premultiplied);
    picture.fill(0x12345678);
    return picture;
}

/// What a canvas that shows these drawables for the first time paints.
QImage paintedAnew(
    const std::vector<Drawable>& drawables, const CanvasBackground& background, Size size, double scale) {
    WidgetCanvas canvas;
    canvas.setSize(size);
    canvas.setBackground(background);
    canvas.setDrawables(drawables);
    QImage picture = newPicture(size, scale);
    canvas.repaint(picture, scale);
    return picture;
}

CanvasBackground solid(Color color) {
    CanvasBackground background;
    background.mode = 2;
    background.solidColor = color;
    return background;
}

int pixelsOf(const std::vector<QRect>& rects) {
    int sum = 0;
    for (const QRect& rect : rects)
        sum += rect.width() * rect.height();
    return sum;
}

/// Meters that change their look, place, order and presence at random.
class Scene {
public:
    Scene(unsigned seed, Size size)
        : random_(seed)
        , size_(size) {
        for (int i = 0; i < 12; ++i)
            meters_.push_back(std::make_shared<FakeMeter>("M", place(), color()));
        shown_ = meters_;
        values_.assign(meters_.size(), 0);
    }

    void change() {
        for (int count = below(4); count >= 0; --count) {
            const auto at = static_cast<std::size_t>(below(12));
            switch (below(5)) {
            case 0:
                meters_[at]->setColor(color());
                break;
            case 1:
                meters_[at]->setFrame(place());
                break;
            case 2:
                values_[at] = below(9);
                break;
            case 3:
                toggle(meters_[at]);
                break;
            default:
                std::shuffle(shown_.begin(), shown_.end(), random_);
            }
        }
    }

    std::vector<Drawable> drawables() const {
        std::vector<Drawable> result;
        for (const auto& meter : shown_) {
            const auto at = std::ranges::find(meters_, meter) - meters_.begin();
            result.push_back({meter, {MeasureValue{}}});
            result.back().values[0].numericValue = values_[static_cast<std::size_t>(at)];
        }
        return result;
    }

private:
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
    QColor color() { return {below(256), below(256), below(256), below(256)}; }
    MeterFrame place() { return {below(200) * 0.7 - 20, below(140) * 0.7 - 10, below(60) * 0.5, below(40) * 0.5}; }
    void toggle(const std::shared_ptr<FakeMeter>& meter) {
        if (std::erase(shown_, meter) == 0)
            shown_.insert(shown_.begin() + below(static_cast<int>(shown_.size()) + 1), meter);
    }

    std::mt19937 random_;
    Size size_;
    std::vector<std::shared_ptr<FakeMeter>> meters_;
    std::vector<std::shared_ptr<FakeMeter>> shown_;
    std::vector<double> values_;
};

TEST(WidgetCanvas, repaintsDamageToTheVeryPixelsOfAFullPaint) {
    for (const double scale : {1.0, 2.0, 1.5}) {
        for (unsigned seed = 0; seed < 20; ++seed) {
            const Size size{120, 80};
            const auto background = solid({0.1, 0.2, 0.3, seed % 2 ? 1.0 : 0.4});
            Scene scene(seed, size);
            WidgetCanvas canvas;
            canvas.setSize(size);
            canvas.setBackground(background);
            QImage picture = newPicture(size, scale);
            for (int step = 0; step < 25; ++step) {
                canvas.setDrawables(scene.drawables());
                canvas.repaint(picture, scale);
                // Asking a meter what changed is the canvas's own business, so the witness asks after it.
                ASSERT_EQ(pictureDifference(picture, paintedAnew(scene.drawables(), background, size, scale)), "")
                    << "scale " << scale << " seed " << seed << " step " << step;
                scene.change();
            }
        }
    }
}

TEST(WidgetCanvas, keepsWhatStandsStillUnderWhatMoves) {
    const Size size{120, 80};
    std::vector<Drawable> drawables;
    std::vector<std::shared_ptr<FakeMeter>> meters;
    for (int i = 0; i < 6; ++i) {
        meters.push_back(std::make_shared<FakeMeter>("M", MeterFrame{i * 9.3, 5, 60, 40}, QColor(40 * i, 90, 9, 120)));
        drawables.push_back({meters.back(), {MeasureValue{}}});
    }
    WidgetCanvas canvas;
    canvas.setSize(size);
    QImage picture = newPicture(size, 1);
    int step = 0;
    const auto moveTheUpperThree = [&] {
        ++step;
        for (std::size_t i = 3; i < 6; ++i)
            drawables[i].values[0].numericValue = step * 7 % 30 + static_cast<int>(i);
        canvas.setDrawables(drawables);
        canvas.repaint(picture, 1);
    };
    const auto isRight = [&](Color background) {
        return pictureDifference(picture, paintedAnew(drawables, solid(background), size, 1));
    };
    Color background{0.1, 0.2, 0.3, 0.5};
    canvas.setBackground(solid(background));
    for (int round = 0; round < 5; ++round) {
        for (int i = 0; i < 40; ++i)
            moveTheUpperThree();
        const int before = meters[0]->drawCount();
        for (int i = 0; i < 10; ++i)
            moveTheUpperThree();
        EXPECT_EQ(meters[0]->drawCount(), before) << "a meter that stands still is painted";
        EXPECT_EQ(isRight(background), "") << "round " << round;
        if (round == 1)
            meters[1]->setColor(Qt::yellow);
        if (round == 2)
            meters[0]->setFrame({3, 3, 30, 30});
        if (round == 3)
            canvas.setBackground(solid(background = {0.9, 0.1, 0.1, 1}));
        moveTheUpperThree();
        EXPECT_EQ(isRight(background), "") << "after the change of round " << round;
    }
    std::swap(drawables[0], drawables[5]);
    moveTheUpperThree();
    EXPECT_EQ(isRight(background), "") << "after a change of layers";
}

TEST(WidgetCanvas, paintsOnlyWhatAChangeTouches) {
    std::vector<std::shared_ptr<FakeMeter>> rows;
    std::vector<Drawable> drawables;
    for (int i = 0; i < 20; ++i) {
        rows.push_back(std::make_shared<FakeMeter>("Row", MeterFrame{10, 10 + i * 14.0, 200, 10}));
        drawables.push_back({rows.back(), {}});
    }
    WidgetCanvas canvas;
    canvas.setSize({220, 300});
    QImage picture = newPicture({220, 300}, 1);
    canvas.setDrawables(drawables);
    EXPECT_EQ(pixelsOf(canvas.repaint(picture, 1)), 220 * 300);

    canvas.setDrawables(drawables);
    EXPECT_TRUE(canvas.repaint(picture, 1).empty());

    rows[3]->setColor(Qt::blue);
    rows[12]->setColor(Qt::blue);
    canvas.setDrawables(drawables);
    const auto& parts = canvas.repaint(picture, 1);
    EXPECT_EQ(parts.size(), 2u);
    EXPECT_LE(pixelsOf(parts), 2 * 204 * 14);
    EXPECT_EQ(rows[3]->drawCount(), 2);
    EXPECT_EQ(rows[4]->drawCount(), 1);
}

TEST(WidgetCanvas, takesFramesThatNoPictureHolds) {
    const double huge = 1e300;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    WidgetCanvas canvas;
    canvas.setSize({50, 50});
    QImage picture = newPicture({50, 50}, 1);
    const auto meter = std::make_shared<FakeMeter>("M", MeterFrame{0, 0, 10, 10});
    for (const MeterFrame& frame : {MeterFrame{huge, huge, huge, huge}, MeterFrame{-1e9, -1e9, 2e9, 2e9},
             MeterFrame{nan, 0, 10, 10}, MeterFrame{5, 5, -10, -10}, MeterFrame{-huge, 0, huge, 1}}) {
        meter->setFrame(frame);
        canvas.setDrawables(std::vector<Drawable>{{meter, {}}});
        for (const QRect& part : canvas.repaint(picture, 1))
            EXPECT_TRUE(picture.rect().contains(part));
    }
}

TEST(CanvasDamage, keepsRectanglesApartAndCoversAll) {
    std::mt19937 random(3);
    const auto tenths = [&](int limit) { return static_cast<double>(static_cast<int>(random()) % limit) / 10; };
    const QSize bounds(300, 200);
    for (int round = 0; round < 60; ++round) {
        CanvasDamage damage;
        QRegion added;
        for (int count = round * 2; count > 0; --count) {
            const Rect rect{150 + tenths(1600), 100 + tenths(1100), tenths(99), tenths(99)};
            damage.add(rect);
            added += pixelRect(rect, 1, bounds);
        }
        QRegion taken;
        for (const QRect& rect : damage.take(1, bounds)) {
            EXPECT_FALSE(rect.isEmpty());
            EXPECT_TRUE(QRect(QPoint(), bounds).contains(rect));
            EXPECT_FALSE(taken.intersects(rect));
            taken += rect;
        }
        EXPECT_TRUE(added.subtracted(taken).isEmpty());
        EXPECT_TRUE(damage.take(1, bounds).empty());
    }
}

} // namespace
} // namespace Ostrel
