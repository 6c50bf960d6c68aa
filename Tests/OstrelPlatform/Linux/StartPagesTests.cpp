#include "OstrelPlatform/Linux/StartPages.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

using namespace Ostrel;

namespace {

/// Pages of files in memory, in kB.
long residentFileSize() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (word == "RssFile:") {
            long size = 0;
            status >> size;
            return size;
        }
    return 0;
}

int written = 1;

} // namespace

TEST(StartPages, letsGoOfCodeAndKeepsWhatWasWritten) {
    written = 2;
    const long before = residentFileSize();
    releaseStartPages();
    const long after = residentFileSize();
    EXPECT_LT(after, before * 3 / 4) << before;
    EXPECT_EQ(written, 2);
}
