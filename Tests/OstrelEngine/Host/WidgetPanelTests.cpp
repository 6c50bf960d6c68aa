#include "OstrelEngine/Host/WidgetPanel.h"

#include "OstrelEngine/Host/FakeDesktop.h"
#include "OstrelEngine/Host/FakeMeter.h"
#include "OstrelEngine/Host/FakePanelClient.h"
#include "OstrelEngine/Host/WidgetCanvasView.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>

#include <gtest/gtest.h>

namespace Ostrel {
namespace {

class WidgetPanelTest : public testing::Test {
protected:
    void open(Size size, Point origin = {100, 100}) {
        panel = std::make_unique<WidgetPanel>(size, origin, view, desktop, client);
    }

    void send(QEvent::Type type, QPoint global) {
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, global - panel->position(), global, button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(panel.get(), &event);
        QCoreApplication::processEvents();
    }

    void drag(std::initializer_list<QPoint> points) {
        send(QEvent::MouseButtonPress, *points.begin());
        for (const QPoint& point : points)
            send(QEvent::MouseMove, point);
        send(QEvent::MouseButtonRelease, *(points.end() - 1));
    }

    int screenHeight() const { return QGuiApplication::primaryScreen()->geometry().height(); }

    void publish(const std::vector<Drawable>& drawables) {
        view.setDrawables(drawables);
        view.display();
    }

    FakeDesktop desktop;
    WidgetCanvasView view{CanvasBackground{}};
    std::unique_ptr<WidgetPanel> panel;
    FakePanelClient client;
    std::vector<Point>& moves = client.moves;
};

TEST_F(WidgetPanelTest, liesAtItsOriginAndGrowsUpward) {
    open({220, 50});
    EXPECT_EQ(panel->geometry(), QRect(100, screenHeight() - 150, 220, 50));
    panel->pinToDesktopLayer();
    QCoreApplication::processEvents();
    panel->setWidgetSize({300.5, 120});
    QCoreApplication::processEvents();
    EXPECT_EQ(panel->geometry(), QRect(100, screenHeight() - 220, 301, 120));
    EXPECT_EQ(panel->origin(), (Point{100, 100}));
    EXPECT_TRUE(moves.empty());
    EXPECT_EQ(desktop.pinned, 1);
    EXPECT_TRUE(panel->flags().testFlag(Qt::WindowDoesNotAcceptFocus));
    EXPECT_EQ(panel->requestedFormat().alphaBufferSize(), 8);
}

TEST_F(WidgetPanelTest, isMovedByItsBackgroundUnlessFrozen) {
    open({220, 50});
    panel->pinToDesktopLayer();
    const QPoint start = panel->position() + QPoint(20, 20);
    drag({start, start + QPoint(2, 1)});
    EXPECT_EQ(panel->origin(), (Point{100, 100})) << "a trembling click moved it";

    drag({start, start + QPoint(2, 1), start + QPoint(30, -40), start + QPoint(25, -35)});
    EXPECT_EQ(panel->origin(), (Point{125, 135}));
    ASSERT_FALSE(moves.empty());
    EXPECT_EQ(moves.back(), (Point{125, 135}));

    panel->setMovableByBackground(false);
    drag({start, start + QPoint(50, 50)});
    EXPECT_EQ(panel->origin(), (Point{125, 135}));

    panel->setMovableByBackground(true);
    send(QEvent::MouseMove, start + QPoint(70, 70));
    EXPECT_EQ(panel->origin(), (Point{125, 135})) << "moved without a press";
}

TEST_F(WidgetPanelTest, opensInViewWhateverItsOrigin) {
    open({220, 50}, {5000, -3000});
    EXPECT_TRUE(QGuiApplication::primaryScreen()->geometry().contains(panel->geometry()));
}

TEST_F(WidgetPanelTest, showsThePictureAndSendsOnlyWhatChanged) {
    const auto meter = std::make_shared<FakeMeter>("M", MeterFrame{10, 10, 20, 10}, Qt::red);
    open({60, 40});
    publish({{meter, {}}});
    auto& screen = *desktop.screens.at(0);
    EXPECT_EQ(screen.shown.pixel(15, 12), 0xffff0000);
    EXPECT_EQ(screen.shown.pixel(50, 30), 0u);

    const int before = screen.presentations;
    publish({{meter, {}}});
    EXPECT_EQ(screen.presentations, before) << "nothing had changed";
    meter->setColor(Qt::blue);
    publish({{meter, {}}});
    EXPECT_EQ(screen.presentations, before + 1);
    EXPECT_EQ(screen.shown.pixel(15, 12), 0xff0000ff);

    panel->setWidgetSize({80, 40});
    view.display();
    EXPECT_EQ(screen.shown.size(), QSize(80, 40));
    EXPECT_EQ(screen.shown.pixel(15, 12), 0xff0000ff);
    EXPECT_EQ(screen.shown.pixel(70, 30), 0u);

    panel.reset();
    meter->setColor(Qt::green);
    publish({{meter, {}}});
    EXPECT_EQ(screen.shown.pixel(15, 12), 0xff0000ff) << "the panel was gone";
}

} // namespace
} // namespace Ostrel
