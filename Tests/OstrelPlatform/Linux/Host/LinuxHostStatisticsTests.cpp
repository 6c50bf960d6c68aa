#include "OstrelPlatform/Linux/Host/LinuxHostStatistics.h"

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <clocale>
#include <unistd.h>

namespace Ostrel {

namespace {

constexpr std::string_view Meminfo
    = "MemTotal:       24684084 kB\nMemFree:        17138160 kB\n"
      "MemAvailable:   19641312 kB\nBuffers:            9588 kB\n"
      "Cached:          2676860 kB\nSwapCached:            0 kB\n"
      "SwapTotal:       2097148 kB\nSwapFree:        1048576 kB\nHugePages_Total:       0\n";
constexpr std::string_view NetDev
    = "Inter-|   Receive                                                |  Transmit\n"
      " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs drop fifo colls carrier "
      "compressed\n"
      "    lo:    3267      29    0    0    0     0          0         0     3267      29    0    0    0     0       0 "
      "  "
      "       0\n"
      "  eth0: 79042299    2139    0    0    0     0          0         0    94813    1087    0    0    0     0       "
      "0  "
      "        0\n";

std::string netLine(std::string_view start) {
    return std::string(start) + " 2 0 0 0 0 0 0 500 6 0 0 0 0 0 0";
}

} // namespace

TEST(ProcFigures, addsUpTheTicksOfTheFirstLine) {
    const struct {
        std::string_view text;
        std::optional<CPUTicks> ticks;
    } rows[] = {
        {"cpu  97149 29916 22856 423282 958 7 128 45 11 0\ncpu0 1 2 3 4 5 6 7 8 9 10\nintr 1\n",
            CPUTicks{97149, 22856 + 7 + 128, 423282 + 958, 29916}},
        {"cpu 1 2 3 4", CPUTicks{1, 3, 4, 2}},
        {"cpu 1 2 3 4 5 x 7", CPUTicks{1, 3, 9, 2}},
        {"cpu 9223372036854775807 0 0 1 1", CPUTicks{9223372036854775807U, 0, 2, 0}},
        {"cpu 1 2 3", std::nullopt},
        {"cpu 1 -2 3 4", std::nullopt},
        {"cpu 99999999999999999999 2 3 4", std::nullopt},
        {"cpu0 1 2 3 4\n", std::nullopt},
        {"", std::nullopt},
        {"\ncpu 1 2 3 4", std::nullopt},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ProcFigures::parseStat(row.text), row.ticks) << row.text;
}

TEST(ProcFigures, takesWhatIsNotAvailableAsUsedMemory) {
    const auto memory = ProcFigures::parseMeminfo(Meminfo);
    EXPECT_EQ(memory.physical, (MemoryFigures{(24684084.0 - 19641312) * 1024, 24684084.0 * 1024}));
    EXPECT_EQ(memory.swap, (MemoryFigures{(2097148.0 - 1048576) * 1024, 2097148.0 * 1024}));
    const MemoryFigures some{60 * 1024, 100 * 1024};
    const struct {
        std::string_view text;
        ProcFigures::Memory memory;
    } rows[] = {
        {"MemTotal: 100 kB\nMemAvailable: 40 kB", {some, std::nullopt}},
        {"MemTotal:100\nMemFree: 10 kB\nBuffers: 10 kB\nCached: 20 kB\n", {some, std::nullopt}},
        {"MemTotal: 100 kB\nMemFree: 40 kB\nSwapTotal: 0 kB\nSwapFree: 0 kB\n", {some, MemoryFigures{0, 0}}},
        {"MemTotal: 100 kB\nMemAvailable: 400 kB\n", {MemoryFigures{0, 100 * 1024}, std::nullopt}},
        {"MemTotal: 99999999999999999999 kB\nMemAvailable: 1 kB\nSwapTotal: 5 kB\n", {}},
        {"MemTotal: 100 kB\nMemAvai", {}},
        {"", {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ProcFigures::parseMeminfo(row.text), row.memory) << row.text;
}

TEST(ProcFigures, addsUpAllInterfacesButLoopback) {
    EXPECT_EQ(ProcFigures::parseNetDev(NetDev), (NetworkBytes{79042299, 94813}));
    const struct {
        std::string text;
        NetworkBytes bytes;
    } rows[] = {
        {netLine("eth0:1000"), {1000, 500}},
        {netLine("eth0:1:1000") + "\n" + netLine("  wlan0: 1"), {1001, 1000}},
        {netLine("  lo:1000") + "\n" + netLine("lo1: 7\t") + "\n", {7, 500}},
        {netLine("eth0: 9007199254740993"), {9007199254740993, 500}},
        {netLine("eth0: 99999999999999999999") + "\n" + netLine("eth1: 3"), {3, 500}},
        {netLine("eth0: 3") + "\neth1: 1000 2 0 0 0 0 0 0", {3, 500}},
        {"", {0, 0}},
        {":\n::\nno colon", {0, 0}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ProcFigures::parseNetDev(row.text), row.bytes) << row.text;
}

TEST(LinuxHostStatistics, readsASourceOnceAWake) {
    const TemporaryFolder proc;
    LinuxHostStatistics host(proc.path());
    EXPECT_FALSE(host.cpuTicks());
    EXPECT_FALSE(host.physicalMemory());
    EXPECT_FALSE(host.networkBytes());
    proc.write("stat", "cpu 1 2 3 4\n");
    proc.write("meminfo", Meminfo);
    proc.write("net/dev", std::string(300'000, '\n') + netLine("eth0: 1"));
    EXPECT_FALSE(host.cpuTicks()) << "the wake goes on";
    host.beginWake();
    EXPECT_EQ(host.cpuTicks(), (CPUTicks{1, 3, 4, 2}));
    EXPECT_EQ(host.swap()->total, 2097148.0 * 1024);
    EXPECT_EQ(host.networkBytes(), NetworkBytes()) << "no more than a bounded piece is read";
    proc.write("stat", "cpu 2 2 3 4\n");
    proc.write("net/dev", std::string(100'000, '\n') + netLine("eth0: 1"));
    EXPECT_EQ(host.cpuTicks()->user, 1);
    host.beginWake();
    EXPECT_EQ(host.cpuTicks()->user, 2);
    EXPECT_EQ(host.networkBytes(), (NetworkBytes{1, 500}));
}

TEST(LinuxHostStatistics, readsTheRunningKernelUnderAnyLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    LinuxHostStatistics host;
    const auto memory = host.physicalMemory();
    std::setlocale(LC_ALL, before.c_str());
    ASSERT_TRUE(memory);
    EXPECT_NEAR(memory->total,
        static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGESIZE)), memory->total / 10);
    EXPECT_GT(memory->used, 0);
    EXPECT_LT(memory->used, memory->total);
    ASSERT_TRUE(host.cpuTicks());
    EXPECT_GT(host.cpuTicks()->idle, 0U);
    EXPECT_TRUE(host.swap());
    EXPECT_TRUE(host.networkBytes());
    const auto disk = host.fileSystem("/");
    ASSERT_TRUE(disk);
    EXPECT_GT(disk->total, disk->free);
    EXPECT_FALSE(host.fileSystem("/nowhere/at/all"));
    EXPECT_FALSE(host.fileSystem(""));
}

} // namespace Ostrel
