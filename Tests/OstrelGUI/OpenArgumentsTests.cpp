#include "OstrelGUI/OpenArguments.h"

#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace Ostrel {
namespace {

using testing::ElementsAre;

TEST(OpenArguments, tellSkinsFromCollectionsAndFromWhatIsNeither) {
    const TemporaryFolder folder;
    const auto skin = folder.write("a/Skin.INI", "");
    const auto package = folder.write("Pack.RmSkin", "");
    const auto text = folder.write("read.me", "");
    std::filesystem::create_directory(folder.path() + "/folder.ini");
    std::filesystem::create_symlink("loop", folder.path() + "/loop");
    const std::string given[] = {skin, folder.path() + "/a/../a//Skin.INI", package, text,
        folder.path() + "/folder.ini/", folder.path() + "/missing.ini", folder.path() + "/loop", ""};
    const auto sorted = OpenArguments::sort(given);
    EXPECT_THAT(sorted.skins, ElementsAre(skin, skin));
    EXPECT_THAT(sorted.collections, ElementsAre(package, folder.path() + "/folder.ini"));
    EXPECT_THAT(sorted.unreadable, ElementsAre(text, given[5], given[6], ""));
    EXPECT_EQ(sorted.paths().size(), 4u);
}

} // namespace
} // namespace Ostrel
