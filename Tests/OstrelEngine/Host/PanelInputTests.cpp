#include "OstrelEngine/Host/WidgetPanel.h"

#include "OstrelEngine/Host/FakeDesktop.h"
#include "OstrelEngine/Host/FakeMeter.h"
#include "OstrelEngine/Host/FakePanelClient.h"
#include "OstrelEngine/Host/FakePointerClient.h"
#include "OstrelEngine/Host/WidgetCanvasView.h"
#include "OstrelPlatform/DesktopAppearance.h"

#include <QClipboard>
#include <QCursor>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QWheelEvent>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {
namespace {

using testing::ElementsAre;

/// A panel with one meter of the left half, whose actions are written down.
class PanelInputTest : public testing::Test {
protected:
    PanelInputTest() {
        meter->setOption("LeftMouseUpAction", "up");
        meter->setOption("MouseOverAction", "over");
        meter->setOption("MouseLeaveAction", "leave");
        meter->setOption("MouseScrollDownAction", "scroll");
        view.setDrawables(std::vector<Drawable>{{meter, {}}});
        pointer->recordsEvents = false;
        view.input().connect(std::make_unique<MeterPointer>(view.canvas().drawables(), pointer), pointer);
        client.onContextAction = [this](WidgetContextAction action) {
            log.emplace_back(action == WidgetContextAction::unrender ? "unrender" : "freeze");
        };
        panel.pinToDesktopLayer();
    }

    void mouse(QEvent::Type type, QPoint point, Qt::MouseButton button = Qt::LeftButton) {
        const bool isMove = type == QEvent::MouseMove;
        const bool isUp = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, point, point + panel.position(), isMove ? Qt::NoButton : button,
            isUp ? Qt::NoButton : button, Qt::NoModifier);
        QCoreApplication::sendEvent(&panel, &event);
    }
    void wheel(QPoint point, int delta, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWheelEvent event(
            point, panel.mapToGlobal(point), {}, {0, delta}, Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&panel, &event);
    }
    /// The window of this kind that is shown, or null.
    template <typename Kind> Kind* shown() const {
        for (QWindow* window : QGuiApplication::topLevelWindows()) {
            if (auto* found = dynamic_cast<Kind*>(window); found && found->isVisible())
                return found;
        }
        return nullptr;
    }
    void key(QWindow* window, int code, const QString& text = {}, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, code, modifiers, text);
        QCoreApplication::sendEvent(window, &event);
    }
    InputField* openField(bool isPassword = false, const std::string& text = "old") {
        InputTextPresentation presentation;
        presentation.measureName = "Ask";
        presentation.frame = {60, 10, 80, 20};
        presentation.defaultValue = text;
        presentation.isPassword = isPassword;
        view.input().promptInput(presentation);
        return shown<InputField>();
    }

    FakeDesktop desktop;
    WidgetCanvasView view{CanvasBackground{}};
    std::shared_ptr<FakeMeter> meter = std::make_shared<FakeMeter>("M", MeterFrame{0, 0, 50, 40});
    FakePanelClient client;
    WidgetPanel panel{{100, 40}, {100, 100}, view, desktop, client};
    std::shared_ptr<FakePointerClient> pointer = std::make_shared<FakePointerClient>();
    std::vector<std::string>& log = pointer->log;
};

TEST_F(PanelInputTest, aPressOnAnActingMeterDoesNotMoveThePanel) {
    const QPoint before = panel.position();
    mouse(QEvent::MouseButtonPress, {10, 10});
    mouse(QEvent::MouseMove, {40, 30});
    mouse(QEvent::MouseButtonRelease, {40, 30});
    EXPECT_EQ(panel.position(), before);
    EXPECT_THAT(log, ElementsAre("up"));
    mouse(QEvent::MouseButtonPress, {80, 10});
    mouse(QEvent::MouseMove, {90, 20});
    mouse(QEvent::MouseButtonRelease, {80, 10});
    EXPECT_EQ(panel.position(), before + QPoint(10, 10));
    EXPECT_THAT(log, ElementsAre("up"));
}

TEST_F(PanelInputTest, otherButtonsAndDoubleClicksDoNoHarm) {
    for (const auto button : {Qt::MiddleButton, Qt::BackButton}) {
        mouse(QEvent::MouseButtonPress, {10, 10}, button);
        mouse(QEvent::MouseMove, {90, 10}, button);
        mouse(QEvent::MouseButtonRelease, {90, 10}, button);
    }
    mouse(QEvent::MouseButtonDblClick, {10, 10});
    EXPECT_THAT(log, ElementsAre());
}

TEST_F(PanelInputTest, hoversAndScrolls) {
    QMouseEvent move(
        QEvent::MouseMove, {10, 10}, panel.mapToGlobal(QPointF(10, 10)), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&panel, &move);
    wheel({10, 10}, -120);
    for (const int part : {-60, 30, -60, -60, -120})
        wheel({10, 10}, part, Qt::ControlModifier);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&panel, &leave);
    EXPECT_THAT(log, ElementsAre("over", "scroll", "command down", "command down", "leave"));
}

TEST_F(PanelInputTest, theFieldLiesOverThePanelAndAnswers) {
    auto* field = openField();
    ASSERT_TRUE(field);
    EXPECT_EQ(field->geometry(), QRect(60, 10, 80, 20).translated(panel.position()));
    key(field, Qt::Key_N, "n");
    key(field, Qt::Key_E, QString::fromUtf8("\u00EB"));
    key(field, Qt::Key_W, "w");
    key(field, Qt::Key_S, {}, Qt::ControlModifier);
    key(field, Qt::Key_Home);
    key(field, Qt::Key_Delete);
    EXPECT_EQ(field->text(), "\u00EBw");
    panel.setPosition(panel.position() + QPoint(7, 9));
    QCoreApplication::processEvents();
    EXPECT_EQ(field->position(), panel.position() + QPoint(60, 10)) << "it follows the panel";
    key(field, Qt::Key_Return);
    EXPECT_THAT(log, ElementsAre("submit Ask \u00EBw"));
    EXPECT_FALSE(shown<InputField>());
}

TEST_F(PanelInputTest, theFieldGivesBackWhatNobodyHasChanged) {
    const std::string given = "two\r\nlines\t\xC3\x28" + std::string(100000, 'x');
    key(openField(false, given), Qt::Key_Return);
    auto* field = openField(false, "a\nb");
    key(field, Qt::Key_End);
    key(field, Qt::Key_C, "c");
    key(field, Qt::Key_Return);
    EXPECT_THAT(log, ElementsAre("submit Ask " + given, "submit Ask a\nbc"));
}

TEST_F(PanelInputTest, aMenuOrFieldUnderThePointerIsNoLeave) {
    const auto leave = [this](QWindow* window) {
        QEvent event(QEvent::Leave);
        QCoreApplication::sendEvent(window, &event);
    };
    const auto point = [this](QPoint at) { QCursor::setPos(panel.position() + at); };
    const auto hover = [&] {
        point({10, 10});
        QMouseEvent move(QEvent::MouseMove, {10, 10}, panel.mapToGlobal(QPointF(10, 10)), Qt::NoButton, Qt::NoButton,
            Qt::NoModifier);
        QCoreApplication::sendEvent(&panel, &move);
    };
    hover();
    mouse(QEvent::MouseButtonPress, {10, 10}, Qt::RightButton);
    leave(&panel);
    key(shown<ContextMenu>(), Qt::Key_Escape);
    auto* field = openField();
    leave(&panel);
    EXPECT_THAT(log, ElementsAre("over"));
    point({-50, 10});
    leave(field);
    EXPECT_THAT(log, ElementsAre("over", "leave"));
    key(field, Qt::Key_Escape);
    hover();
    mouse(QEvent::MouseButtonPress, {10, 10}, Qt::RightButton);
    leave(&panel);
    point({-50, 10});
    key(shown<ContextMenu>(), Qt::Key_Escape);
    EXPECT_THAT(log, ElementsAre("over", "leave", "dismiss Ask", "over", "leave"));
}

TEST_F(PanelInputTest, theFieldIsDismissedByEscapeAndByAClickOutside) {
    key(openField(), Qt::Key_Escape);
    EXPECT_THAT(log, ElementsAre("dismiss Ask"));
    openField();
    mouse(QEvent::MouseButtonPress, {10, 10});
    EXPECT_THAT(log, ElementsAre("dismiss Ask", "dismiss Ask"));
    EXPECT_FALSE(shown<InputField>());
}

TEST_F(PanelInputTest, theFieldTakesComposedTextAndTheClipboard) {
    auto* field = openField();
    QInputMethodEvent composing("ni", {});
    QCoreApplication::sendEvent(field, &composing);
    EXPECT_EQ(field->text(), "old") << "what is composed is not there yet";
    QInputMethodEvent commit;
    commit.setCommitString(QString::fromUtf8("\u65E5"));
    QCoreApplication::sendEvent(field, &commit);
    EXPECT_EQ(field->text(), "\u65E5");
    key(field, Qt::Key_A, {}, Qt::ControlModifier);
    key(field, Qt::Key_X, {}, Qt::ControlModifier);
    EXPECT_EQ(field->text(), "");
    key(field, Qt::Key_V, {}, Qt::ControlModifier);
    key(field, Qt::Key_V, {}, Qt::ControlModifier);
    EXPECT_EQ(field->text(), "\u65E5\u65E5");
}

TEST_F(PanelInputTest, aPasswordStaysInItsField) {
    QGuiApplication::clipboard()->setText("before");
    auto* field = openField(true);
    key(field, Qt::Key_C, {}, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "before");
    QInputMethodQueryEvent query(Qt::ImSurroundingText | Qt::ImHints);
    QCoreApplication::sendEvent(field, &query);
    EXPECT_EQ(query.value(Qt::ImSurroundingText).toString(), "");
    EXPECT_TRUE(query.value(Qt::ImHints).toInt() & Qt::ImhHiddenText);
    key(field, Qt::Key_Enter);
    EXPECT_THAT(log, ElementsAre("submit Ask old"));
}

TEST_F(PanelInputTest, menuAndFieldLookLikeTheDesktop) {
    struct Dark final : DesktopAppearance {
        std::optional<RGBColor> accentColor() override { return RGBColor{1, 0.5, 0}; }
        std::optional<bool> prefersDark() override { return true; }
        std::optional<double> interfaceFontSize() override { return 20; }
    } dark;
    mouse(QEvent::MouseButtonPress, {10, 10}, Qt::RightButton);
    const int usual = shown<ContextMenu>()->height();
    key(shown<ContextMenu>(), Qt::Key_Escape);
    panel.setAppearance(&dark);
    mouse(QEvent::MouseButtonPress, {10, 10}, Qt::RightButton);
    auto* menu = shown<ContextMenu>();
    EXPECT_GT(menu->height(), usual);
    EXPECT_EQ(menu->look().palette.color(QPalette::Highlight).name().toStdString(), "#ff8000");
    for (const auto& palette : {menu->look().palette, openField()->look().palette}) {
        EXPECT_LT(palette.color(QPalette::Base).lightness(), 64);
        EXPECT_GT(palette.color(QPalette::Text).lightness(), 200);
    }
}

TEST_F(PanelInputTest, theContextMenuActsByPointerAndKeys) {
    mouse(QEvent::MouseButtonPress, {10, 10}, Qt::RightButton);
    auto* menu = shown<ContextMenu>();
    ASSERT_TRUE(menu);
    key(menu, Qt::Key_Down);
    key(menu, Qt::Key_Down);
    key(menu, Qt::Key_Return);
    EXPECT_THAT(log, ElementsAre("unrender"));
    EXPECT_FALSE(shown<ContextMenu>());

    mouse(QEvent::MouseButtonPress, {10, 10}, Qt::RightButton);
    key(shown<ContextMenu>(), Qt::Key_Escape);
    mouse(QEvent::MouseButtonPress, {10, 10}, Qt::RightButton);
    menu = shown<ContextMenu>();
    const QPointF item(menu->width() / 2.0, 12);
    QMouseEvent press(QEvent::MouseButtonPress, item, item, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, item, item, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(menu, &release);
    EXPECT_THAT(log, ElementsAre("unrender")) << "the release of the click that opened it chooses nothing";
    QCoreApplication::sendEvent(menu, &press);
    QCoreApplication::sendEvent(menu, &release);
    EXPECT_THAT(log, ElementsAre("unrender", "freeze"));
}

} // namespace
} // namespace Ostrel
