#include "OstrelGUI/OstrelSessionStore.h"

#include "OstrelGUI/SessionCoding.h"
#include "OstrelPlatform/InMemoryUserDefaults.h"
#include "OstrelPlatform/Linux/QSettingsUserDefaults.h"
#include "Support/TemporaryFolder.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace Ostrel {
namespace {

std::shared_ptr<const std::string> picture(const std::string& bytes) {
    return std::make_shared<const std::string>(bytes);
}

OstrelSessionState someSession() {
    OstrelSessionState state;
    state.upsert({.path = "/Skins/P/a.ini",
        .origin = Point{-1.5, 1e9},
        .runtime = std::make_shared<const WidgetRuntimeState>(
            WidgetRuntimeState{{{"Color", "\"1,2\"\\\n\x01"}}, {{"BOX", false}}}),
        .isRendered = true,
        .snapshotData = picture(std::string("\x89PNG\0\xff", 6))});
    state.upsert({.path = "/Skins/P/ü.ini"});
    return state;
}

class SessionStoreTest : public testing::Test {
protected:
    std::string path(std::string_view name) const { return folder.path() + "/" + std::string(name); }
    /// As the next start would find it.
    OstrelSessionState reloaded() const {
        QSettingsUserDefaults defaults(folder.path());
        return OstrelSessionStore(defaults).load();
    }
    std::optional<std::string> base() const {
        return QSettingsUserDefaults(folder.path()).data(OstrelSessionStore::Key);
    }
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            result.push_back(entry.path().filename().string());
        std::ranges::sort(result);
        return result;
    }

    TemporaryFolder folder;
};

TEST_F(SessionStoreTest, givesBackWhatWasSaved) {
    {
        QSettingsUserDefaults defaults(folder.path());
        OstrelSessionStore store(defaults);
        EXPECT_EQ(store.load(), OstrelSessionState());
        store.save(someSession());
        EXPECT_EQ(reloaded(), someSession());
    }
    EXPECT_EQ(reloaded(), someSession());
    EXPECT_EQ(base(),
        "{\"widgets\":[{\"path\":\"/Skins/P/a.ini\",\"origin\":{\"x\":-1.5,\"y\":1000000000.0},"
        "\"runtime\":{\"variables\":{\"Color\":\"\\\"1,2\\\"\\\\\\n\\u0001\"},\"meterVisibility\":{\"BOX\":false}},"
        "\"isRendered\":true,\"snapshotData\":\"iVBORwD/\"},"
        "{\"path\":\"/Skins/P/ü.ini\",\"isRendered\":false}]}");
}

} // namespace
} // namespace Ostrel
