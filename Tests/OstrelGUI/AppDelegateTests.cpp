#include "OstrelGUI/AppDelegate.h"

#include "OstrelGUI/MainWindow.h"
#include "OstrelPlatform/TrayItem.h"
#include "OstrelPlatform/VirtualTime.h"

#include <gtest/gtest.h>

#include <utility>

namespace Ostrel {
namespace {

class FakeWindow final : public MainWindow {
public:
    int shows = 0;
    bool isBroken = false;

    void show() override {
        ++shows;
        setVisible(!isBroken);
    }
    void open(std::span<const std::string>) override { show(); }
    void scan(std::span<const std::string>) override { }
    bool isVisible() const override { return isVisible_; }
    void setVisible(bool isVisible) {
        if (std::exchange(isVisible_, isVisible) != isVisible)
            onVisibilityChange();
    }

private:
    bool isVisible_ = false;
};

class FakeTray final : public TrayItem {
public:
    bool isShown() const override { return isShown_; }
    void setShown(bool isShown) {
        isShown_ = isShown;
        onShownChange();
    }

private:
    bool isShown_ = false;
};

class AppDelegateTest : public testing::Test {
protected:
    AppDelegateTest() {
        delegate.hasWidgets = [this] { return widgets > 0; };
        delegate.isLibraryEmpty = [this] { return isLibraryEmpty; };
        delegate.terminate = [this] { ++ends; };
    }

    void launch() {
        delegate.applicationDidFinishLaunching();
        time.runQueued();
    }
    void stopWidget() {
        --widgets;
        delegate.widgetDidStop();
        time.runQueued();
    }

    VirtualTime time;
    FakeWindow window;
    FakeTray tray;
    AppDelegate delegate{window, tray, time};
    int widgets = 1;
    bool isLibraryEmpty = false;
    int ends = 0;
};

TEST_F(AppDelegateTest, leavesTheWindowHiddenWhereThereIsATray) {
    launch();
    time.runFor(1);
    tray.setShown(true);
    time.runFor(60);
    stopWidget();
    time.runFor(60);
    EXPECT_EQ(window.shows, 0);
    tray.onActivate();
    EXPECT_EQ(window.shows, 1);
    window.setVisible(false);
    time.runFor(60);
    EXPECT_EQ(window.shows, 1) << "closed by the user, reachable by the tray";
    EXPECT_EQ(ends, 0);
    delegate.applicationShouldHandleReopen();
    EXPECT_EQ(window.shows, 2);
}

TEST_F(AppDelegateTest, showsTheWindowAtOnceWhenThereIsNothingElse) {
    isLibraryEmpty = true;
    widgets = 0;
    tray.setShown(true);
    launch();
    EXPECT_EQ(window.shows, 1);
}

TEST_F(AppDelegateTest, givesADesktopTimeToBringUpItsTray) {
    launch();
    time.runFor(AppDelegate::TrayPatienceSeconds - 0.1);
    EXPECT_EQ(window.shows, 0);
    time.runFor(0.2);
    EXPECT_EQ(window.shows, 1);
    window.setVisible(false);
    time.runFor(60);
    EXPECT_EQ(window.shows, 1) << "the widgets are there, and the user closed it";
    stopWidget();
    EXPECT_EQ(window.shows, 2) << "nothing is left to be seen";
    window.setVisible(false);
    EXPECT_EQ(ends, 1) << "the user closed the last thing";
}

TEST_F(AppDelegateTest, doesNotWaitLongWithAnEmptyScreen) {
    widgets = 0;
    launch();
    time.runFor(AppDelegate::EmptyScreenPatienceSeconds + 0.1);
    EXPECT_EQ(window.shows, 1);
}

TEST_F(AppDelegateTest, showsTheWindowWhenTheTrayGoesAndNothingElseIsThere) {
    tray.setShown(true);
    launch();
    tray.setShown(false);
    time.runFor(60);
    EXPECT_EQ(window.shows, 0) << "widgets are there";
    tray.setShown(true);
    stopWidget();
    tray.setShown(false);
    time.runFor(1);
    tray.setShown(true);
    time.runFor(60);
    EXPECT_EQ(window.shows, 0) << "the tray was only started anew";
    tray.setShown(false);
    time.runFor(60);
    EXPECT_EQ(window.shows, 1);
}

TEST_F(AppDelegateTest, endsWhereNothingCanBeShown) {
    window.isBroken = true;
    launch();
    time.runFor(60);
    EXPECT_EQ(ends, 0) << "there are widgets";
    stopWidget();
    EXPECT_EQ(ends, 1);
}

TEST_F(AppDelegateTest, isNotMisledByAWidgetThatIsStartedAnew) {
    launch();
    --widgets;
    delegate.widgetDidStop();
    ++widgets;
    time.runQueued();
    EXPECT_EQ(window.shows, 0);
}

} // namespace
} // namespace Ostrel
