#include "OstrelGUI/ScannerViewModel.h"

#include "OstrelPlatform/VirtualTime.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

namespace Ostrel {
namespace {

class ScannerViewModelTest : public testing::Test {
protected:
    ScannerViewModelTest() {
        model->onChange = [this](const ScannerViewModel::Change& change) {
            listChanges += change.list;
            selectionChanges += change.selection;
            stateChanges += change.state.has_value();
        };
    }

    /// Runs what the background has handed over until the condition holds, or for half a minute.
    template <typename Condition> bool until(Condition condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (!condition() && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            queue.runQueued();
        }
        return condition();
    }
    bool isDone() const {
        return std::ranges::none_of(model->items(),
            [](const auto& item) { return std::holds_alternative<ScannerViewModel::Scanning>(item.state); });
    }
    std::vector<std::string> scan(std::vector<std::string> paths) {
        std::optional<std::vector<std::string>> added;
        model->scan(paths, [&](const auto& expanded, bool) { added = expanded; });
        EXPECT_TRUE(until([&] { return added.has_value(); }));
        return added.value_or(std::vector<std::string>());
    }
    std::string listed() const {
        std::string text;
        for (const auto& item : model->items())
            text += item.displayName() + (model->selection() == item.id ? "* " : " ");
        return text;
    }
    std::string writeSkin(const std::string& name) {
        return folder.write(name, "[Rainmeter]\n[M]\nMeasure=Registry\n");
    }

    TemporaryFolder folder;
    VirtualTime queue;
    std::unique_ptr<ScannerViewModel> model = std::make_unique<ScannerViewModel>(queue);
    int listChanges = 0;
    int selectionChanges = 0;
    int stateChanges = 0;
};

TEST_F(ScannerViewModelTest, listsTheSkinsOfAFolderAndSelectsTheFirst) {
    for (const char* name : {"set/c.ini", "set/a.ini", "set/b.ini"})
        writeSkin(name);
    EXPECT_EQ(scan({folder.path() + "/set"}).size(), 3u);
    EXPECT_EQ(listed(), "a.ini* b.ini c.ini ");
    EXPECT_TRUE(until([&] { return isDone(); }));
    EXPECT_EQ(listChanges, 1);
    EXPECT_EQ(selectionChanges, 1);
    EXPECT_EQ(stateChanges, 3);
    const auto& success = std::get<0>(model->selectedItem()->state);
    EXPECT_EQ(success->report.skinPath, model->selectedItem()->path);
    EXPECT_NE(success->formattedText.find("Findings ("), std::string::npos);
    EXPECT_EQ(success->formattedJSON.front(), '{');
}

TEST_F(ScannerViewModelTest, addsNothingTwiceAndNothingForNothing) {
    const auto path = writeSkin("a.ini");
    scan({path});
    until([&] { return isDone(); });
    const auto id = model->items()[0].id;
    EXPECT_EQ(scan({path, folder.path()}), (std::vector<std::string>{path}));
    EXPECT_EQ(scan({}), std::vector<std::string>{});
    EXPECT_EQ(scan({folder.path() + "/missing"}), std::vector<std::string>{});
    ASSERT_EQ(model->items().size(), 1u);
    EXPECT_EQ(model->items()[0].id, id);
    EXPECT_TRUE(isDone());
    EXPECT_EQ(listChanges, 1);

    writeSkin("0.ini");
    scan({folder.path()});
    EXPECT_EQ(listed(), "a.ini* 0.ini ") << "the selection stays";
}

TEST_F(ScannerViewModelTest, tellsFailureFromGarbage) {
    const auto garbage = folder.write("garbage.ini", "\x01\x02]]==[[\n=\n");
    const auto success = ScannerViewModel::performScan(garbage);
    ASSERT_EQ(success.index(), 0u);
    EXPECT_TRUE(std::get<0>(success)->report.findings.empty());

    const auto missing = folder.path() + "/missing.ini";
    const auto failure = ScannerViewModel::performScan(missing);
    ASSERT_EQ(failure.index(), 1u);
    EXPECT_EQ(std::get<1>(failure)->message, "Could not load skin");
    std::string told;
    for (const auto& diagnostic : std::get<1>(failure)->diagnostics)
        told += diagnostic.message + "\n";
    EXPECT_EQ(told, "Cannot read file: " + missing + "\n");
}

TEST_F(ScannerViewModelTest, removesByPositionAndSelectsTheFirstThatIsLeft) {
    for (char name = 'a'; name <= 'e'; ++name)
        writeSkin(std::string("set/") + name + ".ini");
    scan({folder.path() + "/set"});
    model->setSelection(model->items()[3].id);
    const auto remove = [&](std::vector<std::size_t> offsets) { model->remove(offsets); };
    remove({1, 99, 1});
    EXPECT_EQ(listed(), "a.ini c.ini d.ini* e.ini ");
    remove({2});
    EXPECT_EQ(listed(), "a.ini* c.ini e.ini ");
    remove({});
    remove({7});
    until([&] { return isDone(); });
    EXPECT_EQ(listed(), "a.ini* c.ini e.ini ") << "results of removed items change nothing";
    scan({folder.path() + "/set/b.ini"});
    EXPECT_EQ(listed(), "a.ini* c.ini e.ini b.ini ") << "may be listed again";
    remove({0, 1, 2, 3});
    EXPECT_EQ(model->selection(), std::nullopt);
    EXPECT_EQ(model->selectedItem(), nullptr);
}

TEST_F(ScannerViewModelTest, clearsFiveThousandScansAtOnce) {
    constexpr int Count = 5000;
    for (int i = 0; i < Count; ++i)
        writeSkin("many/" + std::to_string(i) + ".ini");
    ASSERT_EQ(scan({folder.path() + "/many"}).size(), static_cast<std::size_t>(Count));
    EXPECT_TRUE(until([&] { return stateChanges > 100; }));
    const auto start = std::chrono::steady_clock::now();
    model->clearAll();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
    EXPECT_TRUE(model->items().empty());
    EXPECT_EQ(model->selection(), std::nullopt);
    const int before = stateChanges;
    const auto a = writeSkin("a.ini");
    scan({a});
    EXPECT_TRUE(until([&] { return isDone(); }));
    EXPECT_EQ(stateChanges, before + 1) << "of the new scan alone";
    EXPECT_EQ(listed(), "a.ini* ");
}

TEST_F(ScannerViewModelTest, tellsOfAnExpansionFromBeforeAClearAndDoesNotListIt) {
    const auto a = writeSkin("set/a.ini");
    std::vector<std::string> told;
    model->scan(std::vector{folder.path() + "/set"}, [&](const auto& expanded, bool areListed) {
        EXPECT_FALSE(areListed);
        told = expanded;
    });
    EXPECT_TRUE(model->isExpanding());
    model->clearAll();
    const auto b = writeSkin("b.ini");
    scan({b});
    EXPECT_TRUE(until([&] { return !model->isExpanding(); }));
    EXPECT_EQ(listed(), "b.ini* ");
    EXPECT_EQ(told, std::vector{a});
}

TEST_F(ScannerViewModelTest, waitsForNoExpansionThatTakesForever) {
    const auto b = writeSkin("b.ini");
    // Walks through the machine's files one after the other.
    const std::vector<std::string> all(100, "/");
    bool hasEnded = false;
    model->scan(all, [&](const auto&, bool) { hasEnded = true; });
    model->clearAll();
    EXPECT_EQ(scan({b}), (std::vector<std::string>{b})) << "behind one that was cleared";
    model.reset();
    queue.runQueued();
    EXPECT_FALSE(hasEnded);
}

TEST_F(ScannerViewModelTest, endsWithScansUnderWayAndFromItsOwnChange) {
    for (int i = 0; i < 300; ++i)
        writeSkin("many/" + std::to_string(i) + ".ini");
    model->scan(std::vector{folder.path() + "/many"}, [](const auto&, bool) {});
    model->onChange = [this](const ScannerViewModel::Change& change) {
        if (change.state)
            model.reset();
    };
    EXPECT_TRUE(until([&] { return !model; }));
    queue.runQueued();
}

} // namespace
} // namespace Ostrel
