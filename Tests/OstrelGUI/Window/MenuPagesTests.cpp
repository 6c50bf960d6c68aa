#include "MainWindowFixture.h"

#include "OstrelCore/UserPreferenceKeys.h"
#include "OstrelGUI/PackChoices.h"
#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/MediaPlayerMenuView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

using testing::ElementsAre;
using testing::Optional;

namespace {

constexpr auto Target = MediaPlayerMenuView::TargetKey;

QString selectedRows(const QWidget& window) {
    QStringList titles;
    for (const auto* row : childrenOf<OptionRow>(window)) {
        if (row->isChecked())
            titles += row->text() + (row->text() == "Custom…" ? ": " + row->subtitle() : QString());
    }
    return titles.join("|");
}

} // namespace

TEST_F(WindowTest, aPlayerIsChosenForAllWidgets) {
    choose(Kind::mediaPlayer);
    EXPECT_EQ(selectedRows(*window), "Default (from skin)");
    click("Spotify");
    click("Spotify");
    EXPECT_EQ(selectedRows(*window), "Spotify");
    click("Music");
    EXPECT_EQ(defaults.string(Target), "Music");
    click("Default (from skin)");
    EXPECT_EQ(defaults.string(Target), "");
    // At the appearance, and at each change.
    EXPECT_EQ(overrides, (Overrides{std::nullopt, "Spotify", "Music", std::nullopt}));
    EXPECT_EQ(selectedRows(*window), "Default (from skin)");
}

TEST_F(WindowTest, aPlayerOfOnesOwnIsAskedFor) {
    defaults.setString(Target, "Music");
    choose(Kind::mediaPlayer);
    click("Custom…");
    ASSERT_TRUE(dialogs->lastPrompt);
    EXPECT_EQ(dialogs->lastPrompt->value, "Music");
    EXPECT_EQ(dialogs->lastPrompt->placeholder, "e.g. VLC");
    dialogs->answer = " \t";
    click("Custom…");
    EXPECT_EQ(defaults.string(Target), "Music");
    EXPECT_EQ(selectedRows(*window), "Music");
    dialogs->answer = "  Strawberry ";
    click("Custom…");
    EXPECT_EQ(defaults.string(Target), "Strawberry");
    EXPECT_EQ(selectedRows(*window), "Custom…: Strawberry");
    EXPECT_EQ(overrides, (Overrides{"Music", "Strawberry"}));
    click("Music");
    EXPECT_EQ(childrenOf<OptionRow>(*window).back()->subtitle(), "Enter any application name");
}

TEST_F(WindowTest, theScrollDirectionIsSetByTheKeyboard) {
    constexpr auto Key = OstrelPreferenceKey::reverseCommandScrollDirection;
    defaults.setBoolean(Key, true);
    choose(Kind::settings);
    auto* toggle = childOf<SwitchRow>(*window);
    EXPECT_TRUE(toggle->isChecked());
    toggle->setFocus(Qt::TabFocusReason);
    QTest::keyClick(toggle, Qt::Key_Space);
    EXPECT_THAT(defaults.boolean(Key), Optional(false));
    QTest::keyClick(toggle, Qt::Key_Space);
    EXPECT_THAT(defaults.boolean(Key), Optional(true));
}

TEST_F(WindowTest, aPackIsAskedAboutOnceAndItsAnswersAreTakenBack) {
    const auto path = folder.write("a.ini", "[Rainmeter]\n[S]\nMeasure=Script\nScriptFile=go.lua\n[L]\nMeter=Line\n");
    openAndScan({folder.path()}, 1);
    clickRow(SidebarSelection::ofScan(scans.items()[0].id));
    EXPECT_TRUE(showsText("Uses 2 things beyond the base dialect: scripts, graphs."));
    // Decided later: the pack runs, and is asked about the next time.
    click("Run with the full dialect");
    ASSERT_TRUE(dialogs->lastPermissions);
    ASSERT_EQ(dialogs->lastPermissions->kinds.size(), 1U);
    EXPECT_EQ(dialogs->lastPermissions->kinds[0].items, QStringList{"go.lua"});
    EXPECT_EQ(library.calls.back(), "launch " + path);
    const PackChoices choices(defaults);
    const auto root = PackChoices::rootOf(path);
    EXPECT_EQ(choices.of(root), (PackChoice{.dialect = Dialect::Full, .permissions = std::nullopt}));
    dialogs->permissions = std::vector{true};
    click("Render Widget");
    const PackChoice allowed{.dialect = Dialect::Full, .permissions = PackPermissions{.scripts = true}};
    EXPECT_EQ(choices.of(root), allowed);
    dialogs->lastPermissions.reset();
    click("Render Widget");
    EXPECT_FALSE(dialogs->lastPermissions);
    choose(Kind::settings);
    EXPECT_TRUE(showsText("Full dialect; may use scripts"));
    click("Take Back");
    EXPECT_EQ(choices.of(root), PackChoice());
    click("Full dialect");
    EXPECT_EQ(choices.dialectOf(path), Dialect::Full);
}

TEST_F(WindowTest, theTableOfLayersIsSummedUp) {
    choose(Kind::dllCompatibilityLayers);
    std::vector<std::string> pills;
    for (const auto* pill : childrenOf<Pill>(*window))
        pills.push_back(pill->text().toStdString());
    EXPECT_THAT(pills, ElementsAre("3 Working", "23 Not working", "26 Total"));
}

TEST_F(WindowTest, everyControlOfEveryPageIsReachedByTab) {
    openAndScan({skin("a.ini")}, 1);
    for (const Kind kind : {Kind::scan, Kind::mediaPlayer, Kind::settings}) {
        if (kind != Kind::scan)
            choose(kind);
        std::set<QWidget*> reached;
        for (int i = 0; i < 60; ++i) {
            QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : window.get(), Qt::Key_Tab);
            reached.insert(QApplication::focusWidget());
        }
        for (auto* control : window->findChildren<QAbstractButton*>()) {
            // Of those of which one holds, Tab goes to the one that does; the arrows go on.
            const bool isChoice = control->group() && !control->isChecked();
            EXPECT_TRUE(isChoice || !control->isVisible() || reached.contains(control))
                << control->text().toStdString();
        }
    }
}

} // namespace Ostrel
