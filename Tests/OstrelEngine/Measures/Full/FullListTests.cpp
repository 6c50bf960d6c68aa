#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Measures/Full/BackgroundTask.h"
#include "OstrelEngine/Measures/Full/FolderScan.h"
#include "Support/FakeFullHost.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace Ostrel {

namespace {

std::string shown(const BaseMeasure& measure) {
    const auto& value = measure.value();
    return value.preferStringValue ? value.stringValue : formatGeneral(value.numericValue, 12);
}

class FullFolders : public testing::Test {
protected:
    FullFolders() {
        skin.packFolders.root = folder.path() + "/";
        skin.packFolders.skinFolder = folder.path() + "/";
        skin.packFolders.settings = "/nowhere/";
        folder.write("b.txt", "one\r\n\r\ntwo\nthree");
        folder.write("a.png", "12345");
        folder.write("C.PNG", "1");
        folder.write(".hidden", "1234567");
        folder.write("sub/deep/d.png", "123");
        std::filesystem::create_directory_symlink(folder.path(), folder.path() + "/sub/loop");
    }

    /// Two rounds: one asks, the next shows.
    std::string settled(BaseMeasure& measure) {
        measure.update();
        skin.fake.queue.runQueued();
        measure.update();
        return shown(measure);
    }

    TemporaryFolder folder;
    FakeFullHost skin;
};

} // namespace

TEST_F(FullFolders, countsFilesAndBytes) {
    const struct {
        std::string type, subFolders, hidden, filter, shown;
    } rows[] = {{"FileCount", "0", "0", "", "3"}, {"FileCount", "0", "1", "", "4"}, {"FolderCount", "0", "0", "", "1"},
        {"FileCount", "1", "0", "", "4"}, {"FolderSize", "1", "0", "", "25"},
        {"FileCount", "1", "0", "(?i)\\.png$", "3"}, {"FolderSize", "0", "0", "^a", "5"},
        {"FileCount", "0", "0", "(", "3"}, {"What", "0", "0", "", "0"}};
    for (const auto& row : rows) {
        auto& measure = skin.add("F", "Plugin:FolderInfo",
            {{"Folder", folder.path()}, {"InfoType", row.type}, {"IncludeSubFolders", row.subFolders},
                {"IncludeHiddenFiles", row.hidden}, {"RegExpFilter", row.filter}});
        EXPECT_EQ(settled(measure), row.shown) << row.type << row.filter;
    }
    skin.add("Main", "Plugin:FolderInfo", {{"Folder", folder.path()}});
    settled(*skin.measure("Main"));
    EXPECT_EQ(
        shown(skin.addUpdated("Child", "Plugin:FolderInfo", {{"Folder", "[main]"}, {"InfoType", "FolderSize"}})), "22");
    auto& gone = skin.add("G", "Plugin:FolderInfo", {{"Folder", folder.path() + "/none"}, {"InfoType", "FileCount"}});
    EXPECT_EQ(settled(gone), "0");
    skin.allowsAll = false;
    EXPECT_FALSE(mayRead(skin, "/etc"));
    EXPECT_FALSE(mayRead(skin, folder.path() + "/sub/loop/../../../../proc/self"));
    EXPECT_TRUE(mayRead(skin, folder.path() + "/sub"));
}

TEST_F(FullFolders, dropsTheResultForAMeasureThatIsGone) {
    BackgroundTask<int> kept;
    int delivered = 0;
    {
        BackgroundTask<int> ended;
        ended.start(
            skin.fake.platform, [] { return 1; }, [&](int) { ++delivered; });
        kept.start(
            skin.fake.platform, [] { return 2; }, [&](int result) { delivered += result; });
    }
    skin.fake.queue.runQueued();
    EXPECT_EQ(delivered, 2);
    EXPECT_FALSE(kept.isRunning());
}

TEST_F(FullFolders, listsPagesOfAFolder) {
    auto& main = skin.add("Main", "Plugin:FileView",
        {{"Path", folder.path()}, {"Count", "2"}, {"ShowHidden", "0"}, {"FinishAction", "[!Log done]"}});
    auto& first = skin.add("One", "Plugin:FileView", {{"Path", "[Main]"}, {"Type", "FileName"}, {"Index", "1"}});
    auto& second = skin.add("Two", "Plugin:FileView", {{"Path", "[Main]"}, {"Type", "FileName"}, {"Index", "2"}});
    const auto page = [&] {
        skin.fake.queue.runQueued();
        for (auto* measure : {&main, &first, &second})
            measure->update();
        return shown(first) + " " + shown(second);
    };
    EXPECT_EQ(page(), " ") << "nothing yet";
    EXPECT_EQ(page(), ".. sub");
    EXPECT_EQ(std::ranges::count(skin.lines, "run [!Log done]"), 1);
    EXPECT_EQ(shown(main), folder.path() + "/");
    main.executeCommand("PageDown");
    EXPECT_EQ(page(), "a.png b.txt");
    first.executeCommand("indexdown");
    EXPECT_EQ(page(), "b.txt C.PNG");
    main.executeCommand("PageDown");
    EXPECT_EQ(page(), "b.txt C.PNG") << "the last page";
    main.executeCommand("PageUp");
    main.executeCommand("PageUp");
    page();
    second.executeCommand("FollowPath");
    EXPECT_EQ(page(), ".. deep");
    EXPECT_EQ(shown(main), folder.path() + "/sub/");
    main.executeCommand("PreviousFolder");
    EXPECT_EQ(page(), ".. sub");
    auto& all = skin.add("All", "Plugin:FileView",
        {{"Path", folder.path()}, {"Recursive", "2"}, {"Extensions", "png"}, {"SortType", "Size"},
            {"SortAscending", "0"}});
    settled(all);
    std::string names;
    for (const char* index : {"1", "2", "3", "4"})
        names += shown(skin.addUpdated("N", "Plugin:FileView",
                     {{"Path", "[All]"}, {"Type", "FileName"}, {"Index", index}, {"IgnoreCount", "1"}}))
            + " ";
    EXPECT_EQ(names, "a.png d.png C.PNG  ");
}

TEST_F(FullFolders, quotesWithoutRepeating) {
    auto& lines = skin.add("Q", "Plugin:QuotePlugin.dll", {{"PathName", folder.path() + "/b.txt"}});
    lines.update();
    skin.fake.queue.runQueued();
    EXPECT_NE(shown(lines), "") << "the first piece shows as soon as it is read";
    std::set<std::string> seen;
    for (int i = 0; i < 50; ++i) {
        const auto before = shown(lines);
        lines.update();
        EXPECT_NE(shown(lines), before);
        seen.insert(shown(lines));
    }
    EXPECT_EQ(seen, (std::set<std::string>{"one", "two", "three"}));
    auto& files = skin.add("R", "Plugin:QuotePlugin", {{"PathName", folder.path()}, {"FileFilter", "d.*;x"}});
    EXPECT_EQ(settled(files), folder.path() + "/sub/deep/d.png");
    EXPECT_EQ(settled(skin.add("N", "Plugin:QuotePlugin", {{"PathName", "/dev/zero"}})), "");
}

TEST(FolderScan, matchesWildcards) {
    const struct {
        std::string_view name, pattern;
        bool fits;
    } rows[] = {{"a.png", "*.PNG", true}, {"a.png", "?.png", true}, {"ab.png", "?.png", false}, {"", "*", true},
        {"abcabc", "*abc", true}, {"abcab", "*abc", false}, {"a", "", false}};
    for (const auto& row : rows)
        EXPECT_EQ(fitsWildcard(row.name, row.pattern), row.fits) << row.name << " " << row.pattern;
    EXPECT_FALSE(fitsWildcard(std::string(5000, 'a'), "*a*a*a*a*a*a*a*a*b")) << "in bounded time";
}

TEST(FullUsageMonitor, choosesAmongTheProcesses) {
    FakeFullHost skin;
    auto& host = skin.fake.host;
    auto& processes = host.hostDetails.samples.processes;
    host.processorTimes = {{0, 0}, {0, 0}, {0, 0}};
    const auto set = [&](double seconds) {
        processes = {{1, "web", seconds, 300, 100}, {2, "web", seconds, 100, 0}, {3, "shell", seconds / 2, 50, 0},
            {4, "Idle", 100, 1, 1}};
        host.hostDetails.threads = 77;
    };
    const struct {
        FakeFullHost::Pairs options;
        std::string text;
        double number;
    } rows[] = {{{{"Alias", "CPU"}}, "Total", 62.5}, {{{"Alias", "CPU"}, {"Index", "1"}}, "web", 50},
        {{{"Alias", "CPU"}, {"Index", "2"}, {"Percent", "0"}}, "shell", 25},
        {{{"Alias", "CPU"}, {"Index", "9"}}, "", 0}, {{{"Alias", "RAM"}, {"Index", "1"}}, "web", 300},
        {{{"Alias", "RAM"}, {"Index", "1"}, {"Rollup", "0"}}, "web", 200},
        {{{"Alias", "RAMSHARED"}, {"Name", "shell"}}, "shell", 50},
        {{{"Alias", "RAM"}, {"Whitelist", "shell"}}, "Total", 50},
        {{{"Alias", "RAM"}, {"Index", "-1"}}, "Average", 175},
        {{{"Category", "System"}, {"Counter", "Threads"}}, "Total", 77}, {{{"Alias", "GPU"}}, "Total", 0},
        {{{"Category", "Tea"}, {"Counter", "Cups"}}, "", 0}};
    std::vector<BaseMeasure*> measures;
    set(10);
    for (const auto& row : rows)
        measures.push_back(&skin.addUpdated("U", "Plugin:UsageMonitor", row.options));
    auto& top = skin.addUpdated("T", "Plugin:AdvancedCPU", {{"TopProcess", "2"}, {"CPUExclude", "Idle;web"}});
    EXPECT_EQ(measures[0]->value().numericValue, 0) << "a rate needs two samples";
    set(11);
    skin.fake.clock.uptime += 2;
    for (std::size_t i = 0; i < measures.size(); ++i) {
        measures[i]->update();
        EXPECT_EQ(measures[i]->value().stringValue, rows[i].text) << i;
        EXPECT_DOUBLE_EQ(measures[i]->value().numericValue, rows[i].number) << i;
    }
    top.update();
    EXPECT_EQ(top.value().stringValue, "shell");
    EXPECT_DOUBLE_EQ(top.value().numericValue, 25);
}

TEST(FullSensors, findsThemByKindAndNumber) {
    FakeFullHost skin;
    using Kind = Sensor::Kind;
    skin.fake.host.hostDetails.sensorList = {{Kind::Temperature, "coretemp", "Package id 0", 70, 100.0},
        {Kind::Temperature, "coretemp", "Core 0", 60, 100.0}, {Kind::Temperature, "coretemp", "Core 1", 65, 99.0},
        {Kind::Fan, "nct", "", 900, {}}, {Kind::Temperature, "nvme", "", 40, {}}};
    const struct {
        std::string_view type;
        FakeFullHost::Pairs options;
        double number;
    } rows[] = {{"Plugin:CoreTemp", {}, 65}, {"Plugin:CoreTemp", {{"CoreTempType", "Temperature"}}, 60},
        {"Plugin:CoreTemp", {{"CoreTempType", "TjMax"}, {"CoreTempIndex", "1"}}, 99},
        {"Plugin:CoreTemp", {{"CoreTempType", "Temperature"}, {"CoreTempIndex", "7"}}, 0},
        {"Plugin:CoreTemp", {{"CoreTempType", "Vid"}}, 0}, {"Plugin:SpeedFanPlugin", {{"SpeedFanType", "Fan"}}, 900},
        {"Plugin:SpeedFanPlugin", {{"SpeedFanNumber", "3"}, {"SpeedFanScale", "F"}}, 104},
        {"Plugin:SpeedFanPlugin", {{"SpeedFanNumber", "-1"}}, 0}, {"Plugin:HWiNFO.dll", {}, 0},
        {"Plugin:ConfigActive", {}, -1}};
    for (const auto& row : rows)
        EXPECT_DOUBLE_EQ(skin.addUpdated("S", row.type, row.options).value().numericValue, row.number);
    EXPECT_EQ(shown(skin.addUpdated("R", "Registry", {{"RegKey", "SOFTWARE\\HWiNFO64\\VSB"}, {"RegValue", "Value3"}})),
        "900 RPM");
}

TEST(FullRegistry, answersWellKnownKeys) {
    FakeFullHost skin;
    skin.fake.host.hostDetails.facts = {{MachineFact::SystemName, "Lab OS"}, {MachineFact::ProcessorMHz, "2600"}};
    const struct {
        std::string key, value, output, text;
        double number;
    } rows[] = {{"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", "ProductName", "Value", "Lab OS", 0},
        {"hardware\\description\\system\\centralprocessor\\0\\", "~mhz", "Value", "2600", 2600},
        {"Software\\x\\Themes\\Personalize", "AppsUseLightTheme", "Value", "1", 1},
        {"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", "", "Value", "", 0}, {"No\\Such\\Key", "x", "Value", "", 0},
        {"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", "", "ValueList",
            "ProcessorNameString\n~MHz\nVendorIdentifier", 0}};
    for (const auto& row : rows) {
        const auto& value = skin.addUpdated("R", "Registry",
                                    {{"RegKey", row.key}, {"RegValue", row.value}, {"OutputType", row.output}})
                                .value();
        EXPECT_EQ(value.stringValue, row.text) << row.key;
        EXPECT_EQ(value.numericValue, row.number) << row.key;
    }
    EXPECT_EQ(
        shown(skin.addUpdated("C", "Plugin:SysColor", {{"ColorType", "Window"}, {"DisplayType", "RGB"}, {"Hex", "1"}})),
        "FFFFFF");
    EXPECT_EQ(shown(skin.addUpdated("C", "Plugin:SysColor", {{"ColorType", "Highlight"}})), "0,122,255,255");
    EXPECT_EQ(skin.addUpdated("C", "Plugin:SysColor", {{"ColorType", "Sky"}}).value().numericValue, -1);
}

} // namespace Ostrel
