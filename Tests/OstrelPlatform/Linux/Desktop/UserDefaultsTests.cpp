#include "OstrelPlatform/InMemoryUserDefaults.h"
#include "OstrelPlatform/Linux/Desktop/QSettingsUserDefaults.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace Ostrel {
namespace {

struct InMemory {
    InMemoryUserDefaults first;
    /// The same settings in another process, where there can be one.
    UserDefaults& second = first;
};

struct OnDisk {
    TemporaryFolder folder;
    QSettingsUserDefaults first{folder.path() + "/new/dev.ostrel.gui"};
    QSettingsUserDefaults other{folder.path() + "/new/dev.ostrel.gui"};
    UserDefaults& second = other;
};

template <typename Kind> class UserDefaultsTest : public testing::Test {
protected:
    Kind kind;
};
using Kinds = testing::Types<InMemory, OnDisk>;
TYPED_TEST_SUITE(UserDefaultsTest, Kinds);

TYPED_TEST(UserDefaultsTest, givesBackWhatWasSetAndNothingElse) {
    UserDefaults& defaults = this->kind.first;
    UserDefaults& other = this->kind.second;
    EXPECT_EQ(other.data("a"), std::nullopt);
    EXPECT_EQ(other.string("a"), std::nullopt);
    EXPECT_EQ(other.boolean("a"), std::nullopt);

    for (const std::string& bytes : {std::string("\0\xff\n{}", 5), std::string(), std::string(1 << 20, 'x')}) {
        EXPECT_TRUE(defaults.setData("ostrel.sessionState.v2", bytes));
        EXPECT_EQ(other.data("ostrel.sessionState.v2"), bytes);
    }
    for (const char* text : {"VLC", "", "a, b; \"c\" = [d] \\ %20 @Point(1 2)", "größer\n∞"}) {
        defaults.setString("targetMediaPlayer", text);
        EXPECT_EQ(other.string("targetMediaPlayer"), text);
        EXPECT_EQ(other.boolean("targetMediaPlayer"), std::nullopt);
        EXPECT_EQ(other.data("targetMediaPlayer"), std::nullopt);
    }
    for (const bool value : {true, false, true}) {
        defaults.setBoolean("reverseCommandScrollDirection", value);
        EXPECT_EQ(other.boolean("reverseCommandScrollDirection"), value);
        EXPECT_EQ(defaults.boolean("reverseCommandScrollDirection"), value);
    }
    EXPECT_EQ(other.string("targetMediaPlayer"), "größer\n∞");
}

TYPED_TEST(UserDefaultsTest, movesBytesAsideAndKeepsEarlierOnes) {
    UserDefaults& defaults = this->kind.first;
    defaults.setDataAside("a");
    for (const char* bytes : {"first", "second"}) {
        defaults.setData("a", bytes);
        defaults.setDataAside("a");
        EXPECT_EQ(defaults.data("a"), std::nullopt);
    }
    EXPECT_EQ(defaults.folder().has_value(), (std::is_same_v<TypeParam, OnDisk>));
    if (const auto* memory = dynamic_cast<InMemoryUserDefaults*>(&defaults)) {
        EXPECT_EQ(memory->data("a.bak"), "first");
        EXPECT_EQ(memory->data("a.bak2"), "second");
    }
}

TEST(QSettingsUserDefaults, keepsToTheUsersConfigurationFolder) {
    TemporaryFolder folder;
    setenv("XDG_CONFIG_HOME", folder.path().c_str(), 1);
    EXPECT_EQ(QSettingsUserDefaults().folder(), folder.path() + "/dev.ostrel.gui");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << "nothing is written before it is set";
    setenv("XDG_CONFIG_HOME", "relative", 1);
    setenv("HOME", folder.path().c_str(), 1);
    EXPECT_EQ(QSettingsUserDefaults().folder(), folder.path() + "/.config/dev.ostrel.gui");
    QSettingsUserDefaults().setString("targetMediaPlayer", "x");
    struct stat status { };
    ASSERT_EQ(stat((folder.path() + "/.config/dev.ostrel.gui").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u) << "nobody else's business";
    unsetenv("XDG_CONFIG_HOME");
}

TEST(QSettingsUserDefaults, livesWithAFolderAndFilesThatAreNoSettings) {
    TemporaryFolder folder;
    const auto file = folder.write("file", "");
    QSettingsUserDefaults nowhere(file);
    EXPECT_FALSE(nowhere.setData("a", "kept"));
    nowhere.setBoolean("b", true);
    nowhere.setString("c", "text");
    EXPECT_EQ(nowhere.data("a"), "kept");
    EXPECT_EQ(nowhere.boolean("b"), true);
    EXPECT_EQ(nowhere.string("c"), "text");

    folder.write("settings.ini", "[General]\nb=maybe\nlist=a, b\n\xff\xfe garbage ]]\nbytes=@ByteArray(x)\n");
    std::filesystem::create_directory(folder.path() + "/a.json");
    QSettingsUserDefaults odd(folder.path());
    EXPECT_EQ(odd.boolean("b"), std::nullopt);
    EXPECT_EQ(odd.string("list"), std::nullopt);
    EXPECT_EQ(odd.data("a"), std::nullopt);
    EXPECT_FALSE(odd.setData("a", "kept"));
    odd.setDataAside("a");
    EXPECT_TRUE(odd.setData("a", "stored"));
    EXPECT_EQ(QSettingsUserDefaults(folder.path()).data("a"), "stored");
    EXPECT_TRUE(std::filesystem::is_directory(folder.path() + "/a.json.bak"));

    const auto huge = folder.write("huge.json", "");
    std::filesystem::resize_file(huge, QSettingsUserDefaults::MaxDataSize + 1);
    EXPECT_EQ(odd.data("huge"), std::nullopt);
}

} // namespace
} // namespace Ostrel
