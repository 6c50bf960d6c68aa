#include "OstrelGUI/Window/OpenPanel.h"
#include "OstrelGUI/Window/WindowDialogs.h"
#include "Support/EventLoop.h"
#include "Support/TemporaryFolder.h"

#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace {

/// The dialogs that people see, driven by keys and clicks.
class Dialogs : public testing::Test {
protected:
    QWidget window;
    std::unique_ptr<WindowDialogs> dialogs = makeWindowDialogs();

    void SetUp() override {
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
    QDialog* shown() {
        QDialog* found = nullptr;
        runLoopUntil([&] {
            for (auto* dialog : window.findChildren<QDialog*>()) {
                if (dialog->isVisible())
                    found = dialog;
            }
            return found && QApplication::focusWidget() && found->isAncestorOf(QApplication::focusWidget());
        });
        return found;
    }
    void press(Qt::Key key) {
        ASSERT_NE(shown(), nullptr);
        QTest::keyClick(QApplication::focusWidget(), key);
    }
    static void click(QDialog& dialog, const QString& title) {
        for (auto* button : dialog.findChildren<QPushButton*>()) {
            if (button->text() == title)
                return QTest::mouseClick(button, Qt::LeftButton);
        }
        ADD_FAILURE() << "no button " << title.toStdString();
    }
};

} // namespace

TEST_F(Dialogs, returnAloneDeletesNothing) {
    std::vector<bool> answers;
    const auto note = [&](bool confirmed) { answers.push_back(confirmed); };
    const auto ask = [&] { dialogs->confirmDelete(window, "Remove Skin Pack?", "This cannot be undone.", note); };
    ask();
    press(Qt::Key_Return);
    ask();
    press(Qt::Key_Escape);
    ask();
    click(*shown(), "Delete");
    EXPECT_THAT(answers, ElementsAre(false, false, true));
}

TEST_F(Dialogs, aLineIsTypedOrLeft) {
    std::vector<std::optional<QString>> answers;
    const auto ask = [&] {
        dialogs->ask(window, {"Custom Media Player", "Name", "e.g. VLC", "Vox"},
            [&](const std::optional<QString>& answer) { answers.push_back(answer); });
    };
    ask();
    ASSERT_NE(shown(), nullptr);
    EXPECT_EQ(shown()->findChild<QLineEdit*>()->placeholderText(), "e.g. VLC");
    QTest::keyClicks(QApplication::focusWidget(), "Amarok");
    press(Qt::Key_Return);
    ask();
    click(*shown(), "Cancel");
    ask();
    click(*shown(), "OK");
    EXPECT_THAT(answers, ElementsAre(QString("Amarok"), std::nullopt, QString("Vox")));
}

TEST_F(Dialogs, thePanelTakesFilesAndFoldersTogether) {
    const TemporaryFolder folder;
    folder.write("Clock.ini", "");
    folder.write("Pack.RMSKIN", "");
    folder.write("notes.txt", "");
    folder.write("Pack/a.ini", "");
    OpenPanel panel(&window);
    panel.setDirectory(QString::fromStdString(folder.path()));
    panel.open();
    auto* list = panel.findChild<QListView*>("listView");
    const auto rows = [&] { return list->model()->rowCount(list->rootIndex()); };
    ASSERT_TRUE(runLoopUntil([&] { return rows() == 3; })) << "what is no skin is not offered: " << rows();
    const auto scan = [&] {
        for (auto* button : panel.findChildren<QPushButton*>()) {
            if (button->text() == "Scan")
                return button;
        }
        return static_cast<QPushButton*>(nullptr);
    }();
    ASSERT_NE(scan, nullptr);
    EXPECT_FALSE(scan->isEnabled()) << "nothing is marked";
    for (int i = 0; i < rows(); ++i) {
        const QModelIndex index = list->model()->index(i, 0, list->rootIndex());
        if (index.data().toString() != "Pack.RMSKIN")
            list->selectionModel()->select(index, QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    ASSERT_TRUE(scan->isEnabled());
    QTest::mouseClick(scan, Qt::LeftButton);
    EXPECT_FALSE(panel.isVisible());
    EXPECT_EQ(panel.result(), QDialog::Accepted);
    EXPECT_THAT(panel.chosenPaths(), UnorderedElementsAre(folder.path() + "/Clock.ini", folder.path() + "/Pack"));
}

TEST_F(Dialogs, thePanelTakesAFolderAlone) {
    const TemporaryFolder folder;
    folder.write("Pack/a.ini", "");
    OpenPanel panel(&window);
    panel.setDirectory(QString::fromStdString(folder.path()));
    panel.open();
    auto* list = panel.findChild<QListView*>("listView");
    ASSERT_TRUE(runLoopUntil([&] { return list->model()->rowCount(list->rootIndex()) == 1; }));
    list->selectionModel()->select(
        list->model()->index(0, 0, list->rootIndex()), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    click(panel, "Scan");
    EXPECT_EQ(panel.result(), QDialog::Accepted);
    EXPECT_THAT(panel.chosenPaths(), ElementsAre(folder.path() + "/Pack"));
}

} // namespace Ostrel
