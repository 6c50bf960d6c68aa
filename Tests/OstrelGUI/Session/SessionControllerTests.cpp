#include "OstrelGUI/Session/OstrelSessionController.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelEngine/Host/FakeDesktop.h"
#include "OstrelEngine/Host/WidgetController.h"
#include "OstrelEngine/Host/WidgetManager.h"
#include "OstrelGUI/Session/SessionWidgetLibrary.h"
#include "OstrelGUI/WidgetPreferences.h"
#include "OstrelPlatform/InMemoryUserDefaults.h"
#include "Support/FakePlatform.h"
#include "Support/TemporaryFolder.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {
namespace {

constexpr const char* Skin = "[Rainmeter]\nSolidColor=0,0,255\nBackgroundMode=2\n[Variables]\nShade=1\n"
                             "[Box]\nMeter=Image\nW=300\nH=50\nSolidColor=#Shade#,0,255\nDynamicVariables=1\n";
/// Sets a variable at its second tick.
constexpr const char* Changing = "[Rainmeter]\n[Variables]\nShade=1\n[Tick]\nMeasure=Calc\nFormula=Tick+1\n"
                                 "IfEqualValue=2\nIfEqualAction=[!SetVariable Shade 200][!HideMeter Box]\n"
                                 "[Box]\nMeter=Image\nW=300\nH=50\nSolidColor=0,0,255\n";

class SessionControllerTest : public testing::Test {
protected:
    SessionControllerTest() { begin(); }

    /// The next start of the application.
    void begin() {
        end();
        fake = std::make_unique<FakePlatform>();
        fake->clock.uptime = 3600;
        manager = std::make_unique<WidgetManager>(fake->platform, desktop);
        session = std::make_unique<OstrelSessionController>(*manager, defaults, fake->platform);
        session->onLibraryItemsChange = [this] { ++itemChanges; };
    }
    void end() {
        if (session)
            session->setTerminating();
        if (manager)
            manager->stopAll();
        session = nullptr;
        manager = nullptr;
    }
    void pass(double seconds) {
        fake->clock.uptime += seconds;
        fake->queue.runFor(seconds);
    }

    /// What a start would find.
    OstrelSessionState stored() { return OstrelSessionStore(defaults).load(); }
    OstrelWidgetState stored(const std::string& path) {
        const auto state = stored();
        const auto position = state.index(path);
        return position ? state.widgets[*position] : OstrelWidgetState{};
    }
    std::string listed() const {
        std::string text;
        for (const auto& item : session->libraryItems())
            text += item.packageName + "/" + item.relativePath + (item.isRendered ? "* " : " ");
        return text;
    }
    WidgetController& widget(const std::string& path) { return *manager->activeWidgets().at(path); }

    TemporaryFolder folder;
    FakeDesktop desktop;
    InMemoryUserDefaults defaults;
    std::unique_ptr<FakePlatform> fake;
    std::unique_ptr<WidgetManager> manager;
    std::unique_ptr<OstrelSessionController> session;
    int itemChanges = 0;
};

TEST_F(SessionControllerTest, registersWholePacksAndRendersWithAPreview) {
    const auto a = folder.write("Skins/Pack/a.ini", Skin);
    folder.write("Skins/Pack/sub/b.ini", Skin);
    folder.write("Skins/Pack/folder.ini/x.txt", "");
    EXPECT_EQ(listed(), "");
    session->renderWidget("file://" + a);
    EXPECT_EQ(listed(), "Pack/a.ini* Pack/sub/b.ini ");
    EXPECT_EQ(stored(a).origin, (Point{100, 100}));
    EXPECT_EQ(stored(a).runtime->variables.at("Shade"), "1");
    EXPECT_EQ(stored(a).snapshotData, nullptr);
    pass(0.44);
    EXPECT_EQ(stored(a).snapshotData, nullptr);
    pass(0.02);
    ASSERT_TRUE(stored(a).snapshotData);
    const auto preview = QImage::fromData(QByteArray::fromStdString(*stored(a).snapshotData->bytes()), "PNG");
    EXPECT_EQ(preview.size(), QSize(324, 98));
    EXPECT_EQ(preview.pixel(315, 90), 0xff0000ff);
    EXPECT_EQ(preview.pixel(30, 30), 0xff0100ff);
    EXPECT_EQ(session->libraryItems()[0].snapshotData != nullptr, true);

    const int changes = itemChanges;
    session->registerDiscovered(std::vector{a, std::string(), std::string("/nowhere.ini")});
    session->renderWidget(folder.path() + "/nowhere.ini");
    EXPECT_EQ(itemChanges, changes);
}

TEST_F(SessionControllerTest, restoresWhatWasShowingAsItWas) {
    const auto a = folder.write("Skins/P/a.ini", Changing);
    const auto b = folder.write("Skins/P/b.ini", Skin);
    const auto c = folder.write("Skins/P/c.ini", Skin);
    session->renderWidget(a, Point{300, 400});
    session->renderWidget(b);
    session->renderWidget(c);
    session->unrenderWidget(c);
    pass(2);
    begin();
    EXPECT_TRUE(stored(a).isRendered) << "the end of the application is no stop by hand";
    EXPECT_TRUE(manager->activeWidgets().empty());
    session->restoreIfNeeded();
    EXPECT_EQ(listed(), "P/a.ini* P/b.ini* P/c.ini ");
    EXPECT_EQ(widget(a).windowOrigin(), (Point{300, 400}));
    EXPECT_EQ(widget(a).snapshotRuntimeState()->variables.at("Shade"), "200");
    EXPECT_EQ(widget(a).snapshotRuntimeState()->meterVisibility.at("BOX"), false);

    manager->stopAll();
    session->restoreIfNeeded();
    EXPECT_TRUE(manager->activeWidgets().empty()) << "once in a process";

    session->renderWidget(a, Point{1, 2});
    EXPECT_EQ(widget(a).windowOrigin(), (Point{1, 2})) << "a given place wins";
    EXPECT_EQ(stored(a).origin, (Point{1, 2}));
}

TEST_F(SessionControllerTest, forgetsSkinsThatAreGoneAndKeepsTheRest) {
    const auto a = folder.write("Skins/P/a.ini", Skin);
    const auto b = folder.write("Skins/P/b.ini", Skin);
    session->renderWidget(a);
    session->renderWidget(b);
    begin();
    std::filesystem::remove(a);
    // A link that leads to itself is gone too.
    std::filesystem::create_symlink("a.ini", a);
    session->restoreIfNeeded();
    EXPECT_EQ(listed(), "P/b.ini* ");
    EXPECT_EQ(stored().widgets.size(), 1u);
}

TEST_F(SessionControllerTest, storesEachChangeAtOnce) {
    const auto a = folder.write("Skins/P/a.ini", Changing);
    session->renderWidget(a);
    pass(0.5);
    const auto before = stored(a).snapshotData->bytes();
    const int changes = itemChanges;
    pass(0.5);
    EXPECT_EQ(stored(a).runtime->variables.at("Shade"), "200");
    EXPECT_EQ(stored(a).runtime->meterVisibility.at("BOX"), false);
    EXPECT_EQ(itemChanges, changes) << "no card shows a variable";
    pass(0.5);
    EXPECT_NE(*stored(a).snapshotData->bytes(), *before);
    widget(a).onWindowMoved(Point{7, 8});
    EXPECT_EQ(stored(a).origin, (Point{7, 8}));
    manager->stop(a);
    EXPECT_FALSE(stored(a).isRendered);
    EXPECT_EQ(stored(a).origin, (Point{7, 8}));
}

TEST_F(SessionControllerTest, takesFewPicturesOfASkinThatChangesWithoutEnd) {
    const auto a = folder.write("Skins/P/a.ini",
        "[Rainmeter]\nUpdate=20\n[Tick]\nMeasure=Calc\nFormula=Tick+1\n"
        "[Text]\nMeter=String\nMeasureName=Tick\nFontColor=0,0,0\n");
    session->renderWidget(a);
    std::vector<double> taken;
    std::shared_ptr<const std::string> last;
    constexpr int Count = 3000;
    for (int i = 1; i <= Count; ++i) {
        pass(0.02);
        widget(a).onStateDidChange(WidgetRuntimeState{{{"Count", std::to_string(i)}}, {}});
        if (std::exchange(last, session->libraryItems()[0].snapshotData) != session->libraryItems()[0].snapshotData)
            taken.push_back(i * 0.02);
    }
    EXPECT_EQ(stored(a).runtime->variables.at("Count"), std::to_string(Count));
    ASSERT_GE(taken.size(), 4u);
    EXPECT_NEAR(taken[0], 0.46, 0.02);
    EXPECT_NEAR(taken[3] - taken[2], 0.45, 0.05) << "the first ones are on time";
    EXPECT_LE(taken.size(), 14u) << "in a minute";
    pass(30);
    const auto before = session->libraryItems()[0].snapshotData;
    widget(a).onStateDidChange({});
    pass(0.46);
    EXPECT_NE(session->libraryItems()[0].snapshotData, before) << "on time again after a rest";
}

TEST_F(SessionControllerTest, takesThePicturesOfManyOneAtATime) {
    for (const char* name : {"a", "b", "c", "d"})
        session->renderWidget(folder.write(std::string("Skins/P/") + name + ".ini", Skin));
    const auto taken = [&] {
        return std::ranges::count_if(
            session->libraryItems(), [](const auto& item) { return item.snapshotData != nullptr; });
    };
    pass(0.46);
    EXPECT_EQ(taken(), 1);
    pass(0.02);
    EXPECT_EQ(taken(), 2);
    pass(0.05);
    EXPECT_EQ(taken(), 4);
}

TEST_F(SessionControllerTest, followsTheManagerInEitherOrder) {
    const auto a = folder.write("Skins/P/a.ini", Skin);
    session->renderWidget(a);
    const auto first = manager->activeWidgets().at(a);
    session->renderWidget(a);
    EXPECT_TRUE(stored(a).isRendered) << "stopped, then launched";
    first->stop();
    EXPECT_TRUE(stored(a).isRendered) << "a late stop of the one that was replaced";
    manager->stop(a);
    EXPECT_FALSE(stored(a).isRendered);
    // Pending pictures find nothing.
    session = nullptr;
    pass(1);
}

TEST_F(SessionControllerTest, remembersNoVariablesWithoutEnd) {
    const auto a = folder.write("Skins/P/a.ini", Skin);
    session->renderWidget(a);
    widget(a).onStateDidChange(WidgetRuntimeState{{{"Big", std::string(4 << 20, 'x')}}, {}});
    EXPECT_FALSE(stored(a).runtime->variables.contains("Big"));
    widget(a).onStateDidChange(WidgetRuntimeState{{{"Small", "x"}}, {}});
    EXPECT_TRUE(stored(a).runtime->variables.contains("Small"));
}

class PackDeletionTest : public SessionControllerTest {
protected:
    std::optional<std::string> remove(std::vector<std::string> roots) { return session->deletePackage(roots); }
};

TEST_F(PackDeletionTest, removesThePackAndNothingBesideIt) {
    const auto a = folder.write("Skins/P/a.ini", Skin);
    const auto b = folder.write("Skins/P/sub/b.ini", Skin);
    const auto other = folder.write("Skins/Other/o.ini", Skin);
    const auto outside = folder.write("outside/keep.txt", "");
    std::filesystem::create_directory_symlink(folder.path() + "/outside", folder.path() + "/Skins/P/link");
    std::filesystem::create_symlink(outside, folder.path() + "/Skins/P/file");
    session->renderWidget(a);
    session->renderWidget(other);
    EXPECT_EQ(remove({folder.path() + "/Skins/Other/../P/"}), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(folder.path() + "/Skins/P"));
    EXPECT_TRUE(std::filesystem::exists(outside));
    EXPECT_EQ(listed(), "Other/o.ini* ");
    EXPECT_FALSE(manager->isRunning(a));
    EXPECT_TRUE(manager->isRunning(other));
    EXPECT_EQ(stored().widgets.size(), 1u);
    EXPECT_EQ(remove({}), std::nullopt);
    EXPECT_EQ(remove({folder.path() + "/Skins/Missing"}), std::nullopt);
}

TEST_F(PackDeletionTest, removesARootThatIsALinkAsALink) {
    const auto real = folder.write("elsewhere/a.ini", Skin);
    std::filesystem::create_directory(folder.path() + "/Skins");
    std::filesystem::create_directory_symlink(folder.path() + "/elsewhere", folder.path() + "/Skins/P");
    session->renderWidget(folder.path() + "/Skins/P/a.ini");
    EXPECT_EQ(listed(), "P/a.ini* ");
    EXPECT_EQ(remove({folder.path() + "/Skins/P"}), std::nullopt);
    EXPECT_FALSE(std::filesystem::is_symlink(folder.path() + "/Skins/P"));
    EXPECT_TRUE(std::filesystem::exists(real));
    EXPECT_EQ(listed(), "");
}

TEST_F(PackDeletionTest, refusesWhatIsNoPack) {
    const auto a = folder.write("Skins/P/a.ini", Skin);
    session->renderWidget(a);
    for (const char* root : {"", "/", "/x/..", "//"}) {
        EXPECT_TRUE(remove({folder.path() + "/Skins/P", root})) << root;
        EXPECT_TRUE(manager->isRunning(a)) << "nothing is touched";
    }
}

/// Root may remove everything; for as long as this lives it is nobody.
class Nobody {
public:
    Nobody() {
        if (wasRoot_ && seteuid(65534) != 0)
            ADD_FAILURE();
    }
    ~Nobody() {
        if (wasRoot_ && seteuid(0) != 0)
            abort();
    }

private:
    bool wasRoot_ = geteuid() == 0;
};

TEST_F(PackDeletionTest, keepsAPackKnownThatCouldNotBeRemoved) {
    const auto a = folder.write("Skins/P/a.ini", Skin);
    const auto pack = folder.path() + "/Skins/P";
    const auto stuck = pack + "/stuck";
    folder.write("Skins/P/stuck/x", "");
    session->renderWidget(a);
    chmod(folder.path().c_str(), 0711);
    chmod(pack.c_str(), 0777);
    chmod(stuck.c_str(), 0555);
    std::optional<std::string> failure;
    {
        const Nobody nobody;
        failure = remove({pack});
    }
    EXPECT_EQ(failure, "“" + pack + "” could not be removed: Permission denied.");
    EXPECT_TRUE(std::filesystem::exists(stuck + "/x"));
    EXPECT_FALSE(manager->isRunning(a));
    EXPECT_EQ(listed(), "P/a.ini ");
    EXPECT_EQ(stored().widgets.size(), 1u);
    chmod(stuck.c_str(), 0700);
    EXPECT_EQ(remove({pack}), std::nullopt) << "the second try";
    EXPECT_EQ(listed(), "");
}

TEST_F(SessionControllerTest, isALibraryForAWindow) {
    const auto a = folder.write("Skins/P/a.ini", Changing);
    SessionWidgetLibrary library(*session, *manager);
    int changes = 0;
    library.onLibraryItemsChange = [&] { ++changes; };
    library.registerDiscovered(std::vector{a});
    EXPECT_EQ(library.libraryItems().size(), 1u);
    library.renderWidget(a);
    widget(a).onWindowMoved(Point{9, 9});
    pass(1);
    EXPECT_GE(changes, 2);
    library.launchWidget(a);
    EXPECT_EQ(widget(a).windowOrigin(), (Point{100, 100}));
    EXPECT_EQ(widget(a).snapshotRuntimeState()->variables.at("Shade"), "1");
    library.launchWidget(folder.path() + "/missing.ini");
    library.unrenderWidget(a);
    EXPECT_EQ(listed(), "P/a.ini ");
    std::optional<std::string> told = "not told";
    library.deletePackage(std::vector{folder.path() + "/Skins/P"}, [&](auto failure) { told = failure; });
    EXPECT_EQ(told, std::nullopt);
    EXPECT_EQ(listed(), "");
}

TEST_F(SessionControllerTest, readsTheScrollDirectionWhenAsked) {
    connectPreferences(*manager, defaults);
    const auto a = folder.write("Skins/P/a.ini", Skin);
    session->renderWidget(a);
    EXPECT_FALSE(widget(a).isScrollReversed());
    defaults.setBoolean("reverseCommandScrollDirection", true);
    EXPECT_TRUE(widget(a).isScrollReversed());
}

} // namespace
} // namespace Ostrel
