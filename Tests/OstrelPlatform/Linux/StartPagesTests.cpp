#include "OstrelPlatform/Linux/StartPages.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include <fcntl.h>
#include <unistd.h>

using namespace Ostrel;

namespace {

constexpr std::size_t PageSize = 4096;

/// Far more than the kernel maps around a page that is touched; the page that is looked at lies in the middle.
struct Constants {
    constexpr Constants() {
        for (std::size_t i = 0; i < bytes.size(); i += PageSize)
            bytes[i] = static_cast<unsigned char>(i / PageSize + 1);
    }
    std::array<unsigned char, 256 * PageSize> bytes{};
};
constexpr Constants constants;

int written = 1;

/// Whether this process has the page of that address in memory; asking does not bring it there.
bool isPresent(const void* address) {
    const int pages = open("/proc/self/pagemap", O_RDONLY | O_CLOEXEC);
    std::uint64_t entry = 0;
    const auto at = reinterpret_cast<std::uintptr_t>(address) / PageSize * sizeof entry;
    EXPECT_EQ(pread(pages, &entry, sizeof entry, static_cast<off_t>(at)), static_cast<ssize_t>(sizeof entry));
    close(pages);
    return entry >> 63;
}

} // namespace

TEST(StartPages, letsGoOfConstantsAndKeepsWhatWasWritten) {
    const volatile auto* middle = &constants.bytes[128 * PageSize];
    EXPECT_EQ(*middle, 129);
    const void* page = const_cast<const unsigned char*>(middle);
    EXPECT_TRUE(isPresent(page));
    written = 2;
    releaseStartPages();
    EXPECT_FALSE(isPresent(page));
    EXPECT_EQ(written, 2);
    EXPECT_EQ(*middle, 129);
}
