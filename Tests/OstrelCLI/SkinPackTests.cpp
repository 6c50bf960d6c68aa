#include "Support/CommandLine.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace Ostrel {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// The packs that others published, where they are at hand.
std::vector<fs::path> packs() {
    const char* source = std::getenv("OSTREL_SOURCE");
    std::vector<fs::path> result;
    std::error_code missing;
    for (const auto& entry : fs::directory_iterator(fs::path(source ? source : ".") / "../shared/skins", missing)) {
        if (entry.is_directory())
            result.push_back(entry.path());
    }
    std::ranges::sort(result);
    return result;
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        result.push_back(line);
    return result;
}

std::vector<std::string> skinFiles(const fs::path& folder) {
    std::vector<std::string> result;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const auto extension = entry.path().extension().string();
        if (extension == ".ini" || extension == ".INI")
            result.push_back(entry.path().string());
    }
    std::ranges::sort(result);
    return result;
}

/// The worst finding decides.
std::string expectedVerdict(const json& report) {
    if (report["incompatibleCount"] > 0)
        return "incompatible";
    return report["warningCount"] > 0 ? "partiallyCompatible" : "compatible";
}

} // namespace

TEST(SkinPacks, areListedAndReportedWhole) {
    if (packs().empty())
        GTEST_SKIP() << "the packs are not here";
    for (const auto& pack : packs()) {
        const auto expected = skinFiles(pack);
        const auto listed = runOstrel({"list", pack.string()});
        EXPECT_EQ(listed.status, 0) << pack;
        EXPECT_EQ(lines(listed.output), expected);

        const auto reported = runOstrel({"report", "--json", pack.string()});
        EXPECT_EQ(reported.status, 0) << pack << reported.messages;
        std::vector<std::string> paths;
        for (const auto& report : json::parse(reported.output)) {
            paths.push_back(report["skinPath"]);
            EXPECT_EQ(report["verdict"], expectedVerdict(report)) << report;
            EXPECT_EQ(report["findings"].size(),
                report["incompatibleCount"].get<std::size_t>() + report["warningCount"].get<std::size_t>());
        }
        EXPECT_EQ(paths, expected);
    }
}

TEST(SkinPacks, giveAPackageTheFindingsOfItsFolder) {
    const auto folder = packs().empty() ? fs::path() : packs().front().parent_path();
    const auto package = folder / "packages" / "kwcpu_1.2.1.rmskin";
    if (!fs::exists(package))
        GTEST_SKIP() << "the package is not here";
    const TemporaryFolder temporary;
    setenv("TMPDIR", temporary.path().c_str(), 1);
    const auto packed = json::parse(runOstrel({"report", "--json", package.string()}).output);
    unsetenv("TMPDIR");
    auto unpacked = json::parse(runOstrel({"report", "--json", (folder / "kwcpu" / "src" / "Skins").string()}).output);
    ASSERT_EQ(packed.size(), 1U);
    unpacked[0]["skinPath"] = packed[0]["skinPath"];
    EXPECT_EQ(packed, unpacked);
    EXPECT_EQ(packed[0]["findings"].size(), 2U);
}

} // namespace Ostrel
