#include "OstrelEngine/Host/WidgetManager.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelEngine/Host/FakeDesktop.h"
#include "OstrelEngine/Host/WidgetController.h"
#include "OstrelEngine/Runtime/WidgetRuntimeStateJSON.h"
#include "Support/FakePlatform.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace Ostrel {
namespace {

constexpr const char* Skin = "[Rainmeter]\n[Box]\nMeter=Image\nW=300\nH=50\nSolidColor=0,0,255\n";

class WidgetManagerTest : public testing::Test {
protected:
    WidgetManagerTest() {
        fake.clock.uptime = 3600;
        connect(manager);
    }

    void connect(WidgetManager& table) {
        table.onWidgetLaunched = [this](const auto& controller) {
            log += "launched " + name(controller->config().filePath) + " ";
            last = controller;
        };
        table.onWidgetStopped = [this](const std::string& key) { log += "stopped " + name(key) + " "; };
    }

    static std::string name(const std::string& path) { return path.substr(path.rfind('/') + 1); }

    SkinConfig load(const std::string& path) {
        DiskFileProvider files;
        DiagnosticCollector diagnostics;
        return SkinLoader(files, diagnostics).load(path).value();
    }
    std::string launch(const std::string& relativePath, const std::string& text = Skin) {
        const auto path = folder.write(relativePath, text);
        manager.launch(load(path));
        return path;
    }
    std::string takeLog() { return std::exchange(log, {}); }

    TemporaryFolder folder;
    FakePlatform fake;
    FakeDesktop desktop;
    WidgetManager manager{fake.platform, desktop};
    std::weak_ptr<WidgetController> last;
    std::string log;
};

TEST_F(WidgetManagerTest, keepsOneWidgetAFileUnderItsStandardizedPath) {
    const auto path = launch("Pack/A.ini");
    EXPECT_EQ(takeLog(), "launched A.ini ");
    EXPECT_TRUE(manager.isRunning(folder.path() + "/Pack/../Pack//./A.ini"));
    EXPECT_FALSE(manager.isRunning(folder.path() + "/Pack/B.ini"));

    manager.launch(load(folder.path() + "/Pack/../Pack/A.ini"), Point{5, 6});
    EXPECT_EQ(takeLog(), "stopped A.ini launched A.ini ");
    ASSERT_EQ(manager.activeWidgets().size(), 1u);
    EXPECT_EQ(manager.activeWidgets().begin()->first, path);
    EXPECT_EQ(last.lock()->config().filePath, path);
    EXPECT_EQ(last.lock()->windowOrigin(), (Point{5, 6}));

    manager.stop(folder.path() + "/missing.ini");
    EXPECT_EQ(takeLog(), "");
    manager.stop(folder.path() + "/./Pack/A.ini");
    EXPECT_EQ(takeLog(), "stopped A.ini ");
    EXPECT_TRUE(manager.activeWidgets().empty());
}

TEST_F(WidgetManagerTest, ignoresALateStopOfAReplacedWidget) {
    launch("A.ini");
    const auto first = last.lock();
    launch("A.ini");
    takeLog();
    first->stop();
    EXPECT_EQ(takeLog(), "");
    EXPECT_EQ(manager.activeWidgets().size(), 1u);
    EXPECT_TRUE(last.lock()->isRunning());
}

TEST_F(WidgetManagerTest, releasesAWidgetOnlyAfterItsOwnWork) {
    launch("A.ini", "[Rainmeter]\nOnRefreshAction=!DeactivateConfig\n");
    EXPECT_EQ(takeLog(), "launched A.ini ");
    fake.queue.runQueued();
    EXPECT_EQ(takeLog(), "stopped A.ini ");
    EXPECT_TRUE(last.expired());
}

TEST_F(WidgetManagerTest, stopsAllAndRefreshesAll) {
    launch("A.ini");
    launch("B.ini", "[Rainmeter]\nOnRefreshAction=!SetVariable Done 1\n");
    const auto b = last.lock();
    takeLog();
    const auto panels = desktop.screens.size();
    manager.refreshAll();
    EXPECT_EQ(desktop.screens.size(), panels + 2);
    EXPECT_EQ(takeLog(), "");
    EXPECT_EQ(manager.activeWidgets().rbegin()->second, b);
    manager.stopAll();
    EXPECT_EQ(takeLog(), "stopped A.ini stopped B.ini ");
}

TEST_F(WidgetManagerTest, carriesOutWhatSkinsAskForOthersInAnyCase) {
    // The skin names the other config in another case than it has on disk.
    folder.write("Skins/Pack/@Resources/x", "");
    folder.write("Skins/Pack/Other/Clock.ini", Skin);
    const auto asking = [&](const std::string& bang) {
        launch("Skins/Pack/Main/Main.ini", "[Rainmeter]\nOnRefreshAction=!" + bang + " OTHER clock.ini\n");
        takeLog();
        fake.queue.runQueued();
        return takeLog();
    };
    EXPECT_EQ(asking("ToggleConfig"), "launched Clock.ini ");
    EXPECT_EQ(asking("ActivateConfig"), "stopped Clock.ini launched Clock.ini ");
    EXPECT_EQ(asking("ToggleConfig"), "stopped Clock.ini ");
    EXPECT_EQ(asking("DeactivateConfig"), "");
    EXPECT_EQ(asking("ActivateConfig"), "launched Clock.ini ");
    EXPECT_EQ(asking("DeactivateConfig"), "stopped Clock.ini ");
    std::remove((folder.path() + "/Skins/Pack/Other/Clock.ini").c_str());
    EXPECT_EQ(asking("ActivateConfig"), "") << "a skin that cannot be loaded";
}

TEST_F(WidgetManagerTest, survivesARequestAfterItsEnd) {
    auto own = std::make_unique<WidgetManager>(fake.platform, desktop);
    const auto path = folder.write("A.ini", "[Rainmeter]\nOnRefreshAction=[!ActivateConfig B B.ini][!Refresh *]\n");
    own->launch(load(path));
    const auto held = own->activeWidgets().begin()->second;
    own.reset();
    fake.queue.runQueued();
    held->stop();
    EXPECT_FALSE(held->isRunning());
}

TEST_F(WidgetManagerTest, asksWhereToPlaceOnlyWidgetsWithoutAPlace) {
    manager.chooseOrigin = [](Size size) { return Point{size.width, 7}; };
    launch("A.ini");
    EXPECT_EQ(last.lock()->windowOrigin(), (Point{324, 7}));
    manager.launch(load(folder.path() + "/A.ini"), Point{1, 2});
    EXPECT_EQ(last.lock()->windowOrigin(), (Point{1, 2}));
}

TEST(WidgetRuntimeStateJSON, hasBothMembersInOrderAndRequiresThem) {
    EXPECT_EQ(encodeJSON({}), R"({"variables":{},"meterVisibility":{}})");
    const WidgetRuntimeState state{{{"a", "\"1\"\n"}, {"ü", ""}}, {{"BOX", false}}};
    EXPECT_EQ(encodeJSON(state), R"({"variables":{"a":"\"1\"\n","ü":""},"meterVisibility":{"BOX":false}})");
    EXPECT_EQ(decodeRuntimeState(nlohmann::json::parse(encodeJSON(state))), state);
    for (const char* text : {R"({"variables":{}})", R"({"meterVisibility":{}})", "[]", "null",
             R"({"variables":{"a":1},"meterVisibility":{}})", R"({"variables":{},"meterVisibility":{"A":"true"}})",
             R"({"variables":null,"meterVisibility":{}})"})
        EXPECT_EQ(decodeRuntimeState(nlohmann::json::parse(text)), std::nullopt) << text;
    EXPECT_TRUE(decodeRuntimeState(nlohmann::json::parse(R"({"meterVisibility":{},"variables":{},"new":1})")));
}

} // namespace
} // namespace Ostrel
