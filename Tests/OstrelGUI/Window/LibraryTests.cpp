#include "MainWindowFixture.h"

#include "OstrelGUI/Window/DeletePackage.h"
#include "OstrelGUI/Window/LibraryGrid.h"

#include <QAccessible>
#include <QScrollArea>
#include <QScrollBar>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

LibraryLayout layoutOf(std::vector<std::size_t> counts, int width) {
    LibraryLayout layout;
    layout.layOut(counts, width);
    return layout;
}

constexpr int ThreeColumns = 3 * LibraryLayout::cardWidth + 2 * LibraryLayout::cardSpacing;

} // namespace

TEST(LibraryGroups, areSortedWithoutRegardToCaseAndCarryTheirItemsSorted) {
    std::string text;
    for (const LibraryGroup& group :
        groupedItems(std::vector{libraryItem("beta", "b"), libraryItem("Alpha", "z"), libraryItem("Alpha", "Y"),
            libraryItem("Émile", "e"), libraryItem("Beta", "a"), libraryItem("fox", "f")})) {
        text += group.packageName + ":";
        for (const WidgetLibraryItem& item : group.items)
            text += item.displayName;
        text += " ";
    }
    EXPECT_THAT(text, testing::AnyOf("Alpha:Yz Beta:a beta:b Émile:e fox:f ", "Alpha:Yz beta:b Beta:a Émile:e fox:f "));
}

TEST(LibraryLayout, placesAsManyColumnsAsFit) {
    EXPECT_EQ(layoutOf({1}, 10).columns(), 1);
    EXPECT_EQ(layoutOf({1}, ThreeColumns - 1).columns(), 2);
    const LibraryLayout layout = layoutOf({4, 0, 2}, ThreeColumns);
    EXPECT_EQ(layout.columns(), 3);
    EXPECT_EQ(layout.card(0, 3).left(), 0);
    EXPECT_EQ(layout.card(0, 3).top(), layout.card(0, 0).bottom() + 1 + LibraryLayout::cardSpacing);
    EXPECT_EQ(layout.header(1).bottom() + 1 + LibraryLayout::GroupSpacing,
        layout.header(2).top() + LibraryLayout::cardSpacing);
    EXPECT_GE(layout.height(), layout.card(2, 1).bottom());
}

TEST(LibraryLayout, findsWhatIsVisibleAsASearchThroughAllWould) {
    const LibraryLayout layout = layoutOf({7, 0, 1, 30, 2}, ThreeColumns);
    const std::vector<std::size_t> counts{7, 0, 1, 30, 2};
    for (int top = -50; top < layout.height() + 50; top += 37) {
        const int bottom = top + 500;
        std::set<std::pair<std::size_t, std::size_t>> found;
        for (const auto& shown : layout.visible(top, bottom)) {
            for (std::size_t i = shown.firstCard; i < shown.endCard; ++i)
                found.emplace(shown.group, i);
        }
        for (std::size_t group = 0; group < counts.size(); ++group) {
            for (std::size_t i = 0; i < counts[group]; ++i) {
                const QRect card = layout.card(group, i);
                if (card.top() < bottom && card.bottom() >= top) {
                    EXPECT_TRUE(found.contains({group, i})) << top << " " << group << " " << i;
                }
            }
        }
        EXPECT_LE(found.size(), 12U);
    }
    EXPECT_EQ(layout.at(layout.card(3, 17).center()), (LibraryStop{3, 17}));
    EXPECT_EQ(layout.at(layout.header(1).center()), (LibraryStop{1, std::nullopt}));
    EXPECT_EQ(layout.at(QPoint(layout.card(3, 0).right() + 3, layout.card(3, 0).top())), std::nullopt);
}

TEST(LibraryLayout, theKeyboardReachesEveryStopAndComesBack) {
    const LibraryLayout layout = layoutOf({4, 0, 2}, ThreeColumns);
    for (std::size_t i = 0; i < layout.stopCount(); ++i)
        EXPECT_EQ(layout.index(layout.stop(i)), i);
    const auto walk = [&](LibraryStop stop, std::initializer_list<LibraryMove> moves) {
        for (const LibraryMove move : moves)
            stop = layout.moved(stop, move);
        return stop;
    };
    using enum LibraryMove;
    EXPECT_EQ(walk({0, 2}, {down}), (LibraryStop{0, 3})) << "into the last card of a short row";
    EXPECT_EQ(walk({0, 3}, {down, down, down}), (LibraryStop{2, 0})) << "past a group without cards";
    EXPECT_EQ(walk({2, 1}, {up, up, up}), (LibraryStop{0, 3}));
    EXPECT_EQ(walk({0, std::nullopt}, {up, previous}), (LibraryStop{0, std::nullopt}));
    EXPECT_EQ(walk({0, 1}, {last, down, next}), (LibraryStop{2, 1}));
    EXPECT_EQ(layout.moved({2, 1}, pageUp, 99), (LibraryStop{0, std::nullopt}));
}

TEST(DeletePackageRequest, saysWhatWillBeGone) {
    EXPECT_EQ(
        deleteConfirmationText(nullptr), "This will permanently delete the selected skin pack. This cannot be undone.");
    LibraryGroup group{"Pack%1", {libraryItem("Pack%1", "a"), libraryItem("Pack%1", "b"), libraryItem("Pack%1", "c")}};
    const DeletePackageRequest one = DeletePackageRequest::make(group);
    EXPECT_EQ(deleteConfirmationText(&one),
        "This will permanently delete 3 widget(s) and the folder at /home/ada/Skins/Pack%1. This cannot be undone.");
    group.items[1].path = "/mnt/Skins/Pack%1/b/b.ini";
    const DeletePackageRequest two = DeletePackageRequest::make(group);
    EXPECT_THAT(two.rootPaths, ElementsAre("/home/ada/Skins/Pack%1", "/mnt/Skins/Pack%1"));
    EXPECT_EQ(deleteConfirmationText(&two),
        "This will permanently delete 3 widget(s) across 2 folders. This cannot be undone.");
}

class LibraryPage : public WindowTest {
protected:
    LibraryGrid* grid = nullptr;

    void SetUp() override {
        WindowTest::SetUp();
        library.items
            = {libraryItem("Alpha", "Clock", true), libraryItem("Alpha", "Dial"), libraryItem("Beta", "Notes")};
        choose(Kind::widgetLibrary);
        grid = childOf<LibraryGrid>(*window);
        QCoreApplication::processEvents();
    }
    void clickStop(LibraryStop stop) { QTest::mouseClick(grid, Qt::LeftButton, {}, grid->buttonRect(stop).center()); }
};

TEST_F(LibraryPage, aCardsButtonTogglesItsWidget) {
    clickStop({0, 0});
    clickStop({0, 1});
    EXPECT_THAT(library.calls,
        ElementsAre("unrender /home/ada/Skins/Alpha/Clock/Clock.ini", "render /home/ada/Skins/Alpha/Dial/Dial.ini"));
    // Beside the button nothing is pressed, nor when the pointer leaves it before it is let go.
    QTest::mouseClick(grid, Qt::LeftButton, {}, grid->buttonRect({0, 1}).topLeft() - QPoint(20, 40));
    QTest::mousePress(grid, Qt::LeftButton, {}, grid->buttonRect({0, 1}).center());
    QTest::mouseRelease(grid, Qt::LeftButton, {}, grid->buttonRect({0, 0}).center());
    EXPECT_EQ(library.calls.size(), 2U);
}

TEST_F(LibraryPage, theKeyboardDoesTheSame) {
    grid->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(grid->focusedStop(), (LibraryStop{0, std::nullopt}));
    QTest::keyClick(grid, Qt::Key_Right);
    QTest::keyClick(grid, Qt::Key_Space);
    QTest::keyClick(grid, Qt::Key_End);
    QTest::keyClick(grid, Qt::Key_Return);
    EXPECT_THAT(library.calls,
        ElementsAre("unrender /home/ada/Skins/Alpha/Clock/Clock.ini", "render /home/ada/Skins/Beta/Notes/Notes.ini"));
    EXPECT_TRUE(grid->visibleRegion().boundingRect().contains(grid->buttonRect(grid->focusedStop())));
}

TEST_F(LibraryPage, aPackIsDeletedOnlyWhenConfirmed) {
    clickStop({1, std::nullopt});
    EXPECT_THAT(dialogs->asked,
        ElementsAre("Remove Skin Pack?|This will permanently delete 1 widget(s) and the folder "
                    "at /home/ada/Skins/Beta. This cannot be undone."));
    EXPECT_THAT(library.calls, IsEmpty());
    dialogs->deletes = true;
    clickStop({1, std::nullopt});
    EXPECT_THAT(library.calls, ElementsAre("delete /home/ada/Skins/Beta"));
    EXPECT_EQ(dialogs->asked.size(), 2U);
    library.deleteFailure = "Permission denied";
    clickStop({1, std::nullopt});
    EXPECT_EQ(dialogs->asked.back(), "Unable to Remove Skin Pack|Permission denied");
    library.deleteFailure = "";
    clickStop({1, std::nullopt});
    EXPECT_EQ(dialogs->asked.back(), "Unable to Remove Skin Pack|An unexpected error occurred.");
}

TEST_F(LibraryPage, scrollsOnlyWhenItMust) {
    const QScrollBar* bar = nullptr;
    for (const auto* page : window->findChildren<QScrollArea*>()) {
        if (page->isAncestorOf(grid))
            bar = page->verticalScrollBar();
    }
    ASSERT_NE(bar, nullptr);
    library.setItems({libraryItem("Alpha", "a"), libraryItem("Alpha", "b"), libraryItem("Alpha", "c")});
    EXPECT_TRUE(runLoopUntil([&] { return grid->groups().size() == 1 && bar->maximum() == 0; }));
    window->resize(window->minimumSize());
    EXPECT_TRUE(runLoopUntil([&] { return bar->maximum() > 0; }));
    window->resize(980, 680);
    EXPECT_TRUE(runLoopUntil([&] { return bar->maximum() == 0; }));
}

TEST_F(LibraryPage, followsTheLibrary) {
    library.setItems({libraryItem("Gamma", "Sun")});
    ASSERT_TRUE(runLoopUntil([&] { return grid->groups().size() == 1; }));
    EXPECT_EQ(grid->groups()[0].packageName, "Gamma");
    // Whatever the keyboard was on is gone.
    grid->setFocus(Qt::TabFocusReason);
    QTest::keyClick(grid, Qt::Key_End);
    QTest::keyClick(grid, Qt::Key_Space);
    EXPECT_EQ(library.calls.back(), "render /home/ada/Skins/Gamma/Sun/Sun.ini");
    library.setItems({});
    EXPECT_TRUE(runLoopUntil([&] { return showsText("No Loaded Widgets Yet"); }));
}

TEST_F(LibraryPage, isTheSameForAScreenReader) {
    QAccessibleInterface* page = QAccessible::queryAccessibleInterface(grid);
    ASSERT_EQ(page->childCount(), 5);
    std::vector<std::string> names;
    for (int i = 0; i < page->childCount(); ++i)
        names.push_back(page->child(i)->text(QAccessible::Name).toStdString());
    EXPECT_THAT(
        names, ElementsAre("Remove Pack Alpha", "Unrender Clock", "Render Dial", "Remove Pack Beta", "Render Notes"));
    QAccessibleInterface* dial = page->child(2);
    EXPECT_EQ(dial->text(QAccessible::Description), "Dial/Dial.ini, Unrendered");
    EXPECT_EQ(page->childAt(dial->rect().center().x(), dial->rect().center().y()), dial);
    dial->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(library.calls, ElementsAre("render /home/ada/Skins/Alpha/Dial/Dial.ini"));
    library.setItems({});
    ASSERT_TRUE(runLoopUntil([&] { return grid->groups().empty(); }));
    EXPECT_FALSE(dial->isValid());
    EXPECT_EQ(dial->text(QAccessible::Name), "");
}

} // namespace Ostrel
