#include "Support/CommandLine.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace Ostrel {
namespace {

using JSON = nlohmann::json;

/// To trace or to render somebody's skin shows the trash as it is, and never costs a file.
TEST(TrashTraceTests, showsTheRealTrashAndNeverEmptiesIt) {
    const TemporaryFolder home;
    home.write(".local/share/Trash/files/a", "12345");
    home.write(".local/share/Trash/files/folder/b", "123");
    home.write(".local/share/Trash/info/a.trashinfo", "[Trash Info]");
    home.write(".Trash/c", "1");
    const auto skin = home.write("Skin/skin.ini",
        "[Rainmeter]\n"
        "[Count]\nMeasure=RecycleManager\nDrives=~\n"
        "[Size]\nMeasure=Plugin\nPlugin=RecycleManager\nRecycleType=Size\nDrives=~\n"
        "[Classic]\nMeasure=RecycleManager\nDrives=~/.Trash\n");
    const std::string before = std::getenv("HOME") ? std::getenv("HOME") : "";
    setenv("HOME", home.path().c_str(), 1);
    unsetenv("XDG_DATA_HOME");
    const auto trace = runOstrel({"trace", skin, "-"},
        "do [!CommandMeasure Count OpenBin][!CommandMeasure Classic OpenBin]\n"
        "do [!CommandMeasure Size EmptyBin]\ntick\n");
    const auto render = runOstrel({"render", skin, "-o", home.path() + "/out.png"});
    setenv("HOME", before.c_str(), 1);

    EXPECT_EQ(trace.status, 0) << trace.messages;
    std::vector<JSON> lines;
    std::istringstream output(trace.output);
    for (std::string line; std::getline(output, line);)
        lines.push_back(JSON::parse(line));
    ASSERT_EQ(lines.size(), 5U);
    const auto figures = [&](std::size_t line) {
        const auto& measures = lines[line]["measures"];
        return measures["Count"]["number"].dump() + " " + measures["Size"]["number"].dump() + " "
            + measures["Classic"]["number"].dump();
    };
    EXPECT_EQ(figures(1), "3.0 9.0 1.0");
    EXPECT_EQ(lines[1]["requests"],
        JSON::parse(R"([{"kind": "open", "target": "trash:///"}, {"kind": "open", "target": ")" + home.path()
            + R"(/.Trash"}])"));
    EXPECT_EQ(figures(2), "3.0 0.0 1.0") << "emptied for whoever looks next";
    EXPECT_EQ(figures(3), "0.0 0.0 1.0");
    for (const char* path : {".local/share/Trash/files/a", ".local/share/Trash/files/folder/b",
             ".local/share/Trash/info/a.trashinfo", ".Trash/c"})
        EXPECT_TRUE(std::filesystem::exists(home.path() + "/" + path)) << path;
    EXPECT_EQ(render.status, 0) << render.messages;
}

} // namespace
} // namespace Ostrel
