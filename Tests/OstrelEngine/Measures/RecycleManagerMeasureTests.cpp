#include "OstrelEngine/Measures/MeasureTable.h"
#include "OstrelEngine/Measures/RecycleManagerMeasure.h"
#include "OstrelPlatform/RecycleManagerBackend.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

namespace {

struct FakeTrash final : RecycleManagerBackend {
    RecycleBinSnapshot snapshot(const std::string& drives) override {
        log.push_back("look " + drives);
        return content;
    }
    void openBin(const std::string& drives) override { log.push_back("open " + drives); }
    void emptyBin(const std::string& drives) override {
        log.push_back("empty " + drives);
        content = {};
    }
    RecycleBinSnapshot content{3, 4'500'000'000};
    std::vector<std::string> log;
};

std::string shown(const BaseMeasure& measure) {
    const auto& value = measure.value();
    return std::to_string(static_cast<std::int64_t>(value.numericValue)) + " of "
        + std::to_string(static_cast<std::int64_t>(value.minValue)) + ".."
        + std::to_string(static_cast<std::int64_t>(value.maxValue)) + (value.preferStringValue ? "!" : "")
        + value.stringValue;
}

} // namespace

TEST(RecycleManagerMeasure, showsTheItemsOrTheBytes) {
    FakeTrash trash;
    const auto table = MeasureTable::create();
    table->fake.platform.recycleManager = &trash;
    const struct {
        std::string type, shown;
    } rows[] = {
        {"COUNT", "3 of 0..3"}, {" size ", "4500000000 of 0..4500000000"}, {"other", "3 of 0..3"}, {"", "3 of 0..3"}};
    for (const auto& row : rows) {
        for (const char* measureType : {"RecycleManager", "Plugin"}) {
            auto& measure = table->add("M", measureType, {{"Plugin", "RecycleManager.dll"}, {"RecycleType", row.type}});
            EXPECT_EQ(shown(measure), "0 of 0..0");
            measure.update();
            EXPECT_EQ(shown(measure), row.shown) << row.type;
        }
    }
    trash.content = {0, 0};
    EXPECT_EQ(shown(table->addLinked("M", "RecycleManager", {})), "0 of 0..0");
}

TEST(RecycleManagerMeasure, opensAndEmptiesOnCommand) {
    FakeTrash trash;
    const auto table = MeasureTable::create();
    table->fake.platform.recycleManager = &trash;
    auto& measure = table->addLinked("M", "RecycleManager", {{"Drives", "/a|/b"}});
    trash.log.clear();
    for (const char* other : {"", "  ", "EmptyBinSilent", "Open Bin", "\"EmptyBin\""})
        EXPECT_TRUE(measure.executeCommand(other));
    EXPECT_THAT(trash.log, testing::IsEmpty());
    measure.executeCommand(" openBin\tnow");
    measure.executeCommand("EMPTYBIN now");
    EXPECT_THAT(trash.log, testing::ElementsAre("open /a|/b", "empty /a|/b", "look /a|/b"));
    EXPECT_EQ(shown(measure), "0 of 0..0") << "without waiting for the next tick";
    measure.setOption("Drives", "/c");
    measure.update();
    EXPECT_EQ(trash.log.back(), "look /a|/b");
}

TEST(RecycleManagerMeasure, takesItsTrashFromTheFactory) {
    FakeTrash platformTrash;
    const auto other = std::make_shared<FakeTrash>();
    other->content = {7, 7};
    const auto table = MeasureTable::create();
    EXPECT_EQ(shown(table->addLinked("M", "RecycleManager", {})), "0 of 0..0") << "there is no trash";
    table->measure("M")->executeCommand("EmptyBin");
    table->fake.platform.recycleManager = &platformTrash;
    RecycleManagerMeasure::setBackendFactory([&](const Platform&) { return other; });
    EXPECT_EQ(shown(table->addLinked("M", "RecycleManager", {})), "7 of 0..7");
    RecycleManagerMeasure::setBackendFactory({});
    EXPECT_EQ(shown(table->addLinked("M", "RecycleManager", {})), "3 of 0..3");
}

} // namespace Ostrel
