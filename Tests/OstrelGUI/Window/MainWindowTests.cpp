#include "MainWindowFixture.h"

#include "OstrelGUI/Window/DropHint.h"

#include <QClipboard>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace Ostrel {

using testing::ElementsAre;
using testing::IsEmpty;

bool WindowTest::showsText(const QString& text) {
    const auto labels = window->findChildren<QLabel*>();
    return std::any_of(
        labels.begin(), labels.end(), [&](QLabel* label) { return label->isVisible() && label->text() == text; });
}

TEST_F(WindowTest, beginsWithThePlaceholderAndItsOwnWords) {
    EXPECT_EQ(window->windowTitle(), "Ostrel");
    EXPECT_EQ(window->size(), QSize(980, 680));
    EXPECT_EQ(window->sidebarSelection(), std::nullopt);
    EXPECT_TRUE(showsText("Select a scan"));
    EXPECT_TRUE(showsText("Choose an item from the sidebar, or click Open… to scan a new skin."));
    QStringList rows;
    for (int i = 0; i < sidebar().model()->rowCount(); ++i)
        rows += sidebar().model()->index(i, 0).data().toString();
    EXPECT_EQ(rows.join("|"),
        "Menus|Widget Library|DLL Compatibility Layers|Media Player|Settings|Scans|"
        "No scans yet. Use Open… to scan a skin.");
}

TEST_F(WindowTest, oneSkinOpensRegistersAndShowsRightAway) {
    const std::string path = skin("Clock.INI");
    openAndScan({path, folder.write("readme.txt", "no skin")}, 1);
    EXPECT_THAT(library.calls, ElementsAre("register " + path, "launch " + path));
    EXPECT_EQ(window->sidebarSelection(), SidebarSelection::ofScan(scans.items().front().id));
    EXPECT_TRUE(showsText("Clock.INI"));
    EXPECT_TRUE(showsText("0 incompatible"));
}

TEST_F(WindowTest, aFolderFillsTheListsAndRendersNothing) {
    const std::string second = skin("Pack/b.ini");
    const std::string first = skin("Pack/a.ini");
    openAndScan({folder.path() + "/Pack"}, 2);
    EXPECT_THAT(library.calls, ElementsAre("register " + first + " " + second));
    EXPECT_EQ(window->sidebarSelection(), SidebarSelection::ofScan(scans.items().front().id));
}

TEST_F(WindowTest, aSkinThatIsShownAlreadyIsListedAndSelectedLikeAnyOther) {
    const std::string first = skin("First.ini");
    const std::string second = skin("Second.ini");
    choose(Kind::settings);
    window->listSelection(std::vector{first});
    ASSERT_TRUE(runLoopUntil([&] { return !library.calls.empty(); }));
    EXPECT_EQ(window->sidebarSelection(), SidebarSelection::ofScan(scans.items().front().id));
    openAndScan({second}, 2);
    EXPECT_EQ(scans.selection(), window->sidebarSelection()->scan);
    EXPECT_TRUE(showsText("First.ini")) << "what is selected stays";
    EXPECT_THAT(library.calls, ElementsAre("register " + first, "register " + second, "launch " + second));
}

TEST_F(WindowTest, aClearWhileAFolderIsReadKeepsItInTheLibrary) {
    const std::string path = skin("Pack/a.ini");
    open({folder.path() + "/Pack"});
    click("Clear");
    ASSERT_TRUE(runLoopUntil([&] { return !library.calls.empty(); }));
    EXPECT_THAT(library.calls, ElementsAre("register " + path));
    EXPECT_THAT(scans.items(), IsEmpty());
    EXPECT_TRUE(showsText("Select a scan"));
}

TEST_F(WindowTest, whatIsNoSkinIsDropped) {
    open({folder.write("notes.txt", "text"), folder.path() + "/gone"});
    open({});
    EXPECT_FALSE(scans.isExpanding());
    EXPECT_THAT(scans.items(), IsEmpty());
    EXPECT_THAT(library.calls, IsEmpty());
}

TEST_F(WindowTest, oneOpenPanelAtATime) {
    click("Open…");
    click("Open…");
    EXPECT_THAT(dialogs->asked, ElementsAre("open"));
    dialogs->openPanel(std::nullopt);
    click("Open…");
    EXPECT_THAT(dialogs->asked, ElementsAre("open", "open"));
}

TEST_F(WindowTest, clearKeepsAPageThatIsNoScan) {
    openAndScan({skin("a.ini"), skin("b.ini")}, 2);
    choose(Kind::widgetLibrary);
    EXPECT_EQ(scans.selection(), std::nullopt);
    click("Clear");
    EXPECT_THAT(scans.items(), IsEmpty());
    EXPECT_EQ(window->sidebarSelection(), SidebarSelection{Kind::widgetLibrary});
    EXPECT_TRUE(showsText("No Loaded Widgets Yet"));
    openAndScan({skin("a.ini")}, 1);
    click("Clear");
    EXPECT_EQ(window->sidebarSelection(), std::nullopt);
    EXPECT_TRUE(showsText("Select a scan"));
}

TEST_F(WindowTest, removingTheShownScanShowsTheFirstThatIsLeft) {
    openAndScan({skin("a.ini"), skin("b.ini"), skin("c.ini")}, 3);
    const auto first = scans.items()[0].id;
    const auto last = scans.items()[2].id;
    clickRow(SidebarSelection::ofScan(last));
    EXPECT_EQ(scans.selection(), last);
    const std::size_t other = 1;
    window->removeScans(std::span(&other, 1));
    EXPECT_EQ(window->sidebarSelection(), SidebarSelection::ofScan(last));
    QTest::keyClick(&sidebar(), Qt::Key_Delete);
    EXPECT_EQ(window->sidebarSelection(), SidebarSelection::ofScan(first));
    EXPECT_TRUE(showsText("a.ini"));
    QTest::keyClick(&sidebar(), Qt::Key_Delete);
    EXPECT_EQ(window->sidebarSelection(), std::nullopt);
    EXPECT_TRUE(showsText("Select a scan"));
}

TEST_F(WindowTest, theArrowKeysWalkThroughThePages) {
    choose(Kind::widgetLibrary);
    std::vector<Kind> walked;
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(&sidebar(), Qt::Key_Down);
        walked.push_back(window->sidebarSelection()->kind);
    }
    EXPECT_THAT(walked, ElementsAre(Kind::dllCompatibilityLayers, Kind::mediaPlayer, Kind::settings));
    choose(Kind::widgetLibrary);
    click("Open Settings");
    EXPECT_EQ(window->sidebarSelection(), SidebarSelection{Kind::settings});
}

TEST_F(WindowTest, aScanStartsAndStopsItsWidget) {
    const std::string path = skin("Clock.ini");
    openAndScan({folder.path()}, 1);
    click("Render Widget");
    EXPECT_EQ(library.calls.back(), "launch " + path);
    WidgetLibraryItem item;
    item.path = path;
    item.isRendered = true;
    library.setItems({item});
    EXPECT_NE(button("Render Widget"), nullptr) << "it is to be shown, but did not load";
    item.isRunning = true;
    library.setItems({item});
    click("Stop Widget");
    EXPECT_EQ(library.calls.back(), "unrender " + path);
    library.setItems({});
    EXPECT_NE(button("Render Widget"), nullptr);
}

TEST_F(WindowTest, aReportIsReadAndCopiedInEitherForm) {
    openAndScan({folder.write("Old.ini", "[M]\nMeasure=Plugin\nPlugin=Foo.dll\n")}, 1);
    const auto& success = *std::get<std::shared_ptr<const ScannerViewModel::ScanSuccess>>(scans.items()[0].state);
    auto* output = window->findChild<QPlainTextEdit*>();
    click("Copy");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), success.formattedText);
    click("JSON");
    EXPECT_EQ(output->toPlainText().toStdString(), success.formattedJSON);
    click("Copy");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), success.formattedJSON);
    EXPECT_TRUE(showsText(QString("Findings (%1)").arg(success.report.findings.size())));
    EXPECT_TRUE(showsText("Diagnostics"));
    EXPECT_FALSE(showsText("Error"));
}

TEST_F(WindowTest, aSkinThatDoesNotLoadSaysWhy) {
    const std::string path = skin("Large.ini");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 33);
    openAndScan({path}, 1);
    EXPECT_TRUE(showsText("Error"));
    EXPECT_TRUE(showsText("Could not load skin"));
    EXPECT_TRUE(showsText("Diagnostics"));
    EXPECT_FALSE(showsText("Summary"));
}

TEST_F(WindowTest, aDropOpensLikeThePanel) {
    const std::string path = skin("Clock.ini");
    auto* hint = childOf<DropHint>(*window);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path)), QUrl("https://example.org/a.ini")});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    EXPECT_TRUE(hint->isVisible());
    QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(window.get(), &drop);
    EXPECT_FALSE(hint->isVisible());
    ASSERT_TRUE(runLoopUntil([&] { return library.calls.size() == 2; }));
    EXPECT_THAT(library.calls, ElementsAre("register " + path, "launch " + path));

    QMimeData other;
    other.setUrls({QUrl::fromLocalFile(QString::fromStdString(folder.write("a.txt", "x")))});
    QDragEnterEvent refused({5, 5}, Qt::CopyAction, &other, Qt::LeftButton, {});
    refused.ignore();
    QCoreApplication::sendEvent(window.get(), &refused);
    EXPECT_FALSE(refused.isAccepted());
    EXPECT_FALSE(hint->isVisible());
}

TEST_F(WindowTest, fiveThousandScansAreClearedWhileTheyRun) {
    constexpr int Count = 5000;
    for (int i = 0; i < Count; ++i)
        skin("Many/" + std::to_string(i) + ".ini");
    const int emptyRows = sidebar().model()->rowCount();
    open({folder.path() + "/Many"});
    ASSERT_TRUE(runLoopUntil([&] { return scans.items().size() == Count; }));
    EXPECT_EQ(sidebar().model()->rowCount(), emptyRows - 1 + Count);
    EXPECT_TRUE(isScanning());
    sidebar().scrollToBottom();
    QCoreApplication::processEvents();
    click("Clear");
    EXPECT_EQ(sidebar().model()->rowCount(), emptyRows);
    EXPECT_EQ(window->sidebarSelection(), std::nullopt);
    openAndScan({skin("after.ini")}, 1);
    EXPECT_TRUE(showsText("after.ini"));
}

TEST_F(WindowTest, removingSomeOfManyKeepsTheOthersInOrder) {
    std::vector<std::string> paths;
    for (const char* name : {"a.ini", "b.ini", "c.ini", "d.ini", "e.ini"})
        paths.push_back(skin(name));
    openAndScan(paths, paths.size());
    window->removeScans(std::vector<std::size_t>{0, 2, 3, 9});
    QStringList rows;
    const QModelIndexList found
        = sidebar().model()->match(sidebar().model()->index(0, 0), Qt::DisplayRole, ".ini", -1, Qt::MatchEndsWith);
    for (const QModelIndex& row : found)
        rows += row.data().toString();
    EXPECT_EQ(rows.join(" "), "b.ini e.ini");
    EXPECT_TRUE(showsText("b.ini"));
}

TEST_F(WindowTest, followsTheDesktopsLooks) {
    const auto isDark = [&] { return window->palette().color(QPalette::Window).lightness() < 128; };
    appearance.dark = true;
    appearance.accent = RGBColor{1, 0.5, 2};
    QEvent activation(QEvent::ActivationChange);
    QCoreApplication::sendEvent(window.get(), &activation);
    EXPECT_TRUE(runLoopUntil(isDark));
    EXPECT_EQ(window->palette().color(QPalette::Highlight).name().toStdString(), "#ff80ff");
    EXPECT_LT(button("Clear")->palette().color(QPalette::Button).lightness(), 128) << "the style sheet too";
    appearance.dark = false;
    QCoreApplication::sendEvent(window.get(), &activation);
    EXPECT_TRUE(runLoopUntil([&] { return !isDark(); }));
}

} // namespace Ostrel
