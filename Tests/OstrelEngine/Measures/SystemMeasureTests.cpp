#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Measures/MeasureTable.h"
#include "OstrelEngine/Measures/TimeMeasure.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace Ostrel {

namespace {

/// "number/minimum/maximum" for a row that can be compared at a glance.
std::string shown(const MeasureValue& value) {
    return formatGeneral(value.numericValue, 15) + " of " + formatGeneral(value.minValue) + ".."
        + formatGeneral(value.maxValue, 15) + (value.preferStringValue ? "!" : "") + " '" + value.stringValue + "'";
}

constexpr std::string_view Untouched = "0 of 0..100 ''";

/// The environment of one test.
class ScopedEnvironment {
public:
    ScopedEnvironment(std::initializer_list<std::pair<const char*, const char*>> values) {
        for (const auto& [name, value] : values) {
            const char* old = std::getenv(name);
            before_.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
            setenv(name, value, 1);
        }
    }
    ~ScopedEnvironment() {
        for (const auto& [name, value] : before_)
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> before_;
};

std::string formatted(std::string format, double at) {
    const auto table = MeasureTable::create();
    table->fake.clock.wall = at;
    return table->addLinked("T", "Time", {{"Format", std::move(format)}}).value().stringValue;
}

} // namespace

TEST(CPUMeasure, showsTheLoadSinceTheUpdateBefore) {
    const auto table = MeasureTable::create();
    auto& host = table->fake.host;
    host.cpu = CPUTicks{1000, 1000, 1000, 1000};
    auto& measure = table->addLinked("M", "CPU", {});
    EXPECT_EQ(shown(measure.value()), Untouched);
    const struct {
        std::optional<CPUTicks> ticks;
        std::string_view shown;
    } rows[] = {{CPUTicks{1010, 1005, 1080, 1005}, "20 of 0..100 '20'"},
        {CPUTicks{1010, 1005, 1080, 1005}, "0 of 0..100 '0'"},
        {CPUTicks{1011, 1005, 1082, 1005}, "33.3333333333333 of 0..100 '33'"},
        // A failed read counts as zeros, and the next one is compared with these.
        {std::nullopt, "75 of 0..100 '75'"}, {CPUTicks{10, 20, 60, 10}, "40 of 0..100 '40'"}};
    for (const auto& row : rows) {
        host.cpu = row.ticks;
        measure.update();
        EXPECT_EQ(shown(measure.value()), row.shown);
    }
}

TEST(MemoryMeasure, showsUseOfMemoryOrSwap) {
    const auto table = MeasureTable::create();
    auto& memory = table->addLinked("M", "Memory", {});
    auto& physical = table->addLinked("P", "physicalmemory", {});
    auto& swap = table->addLinked("S", "SwapMemory", {});
    EXPECT_EQ(shown(memory.value()), Untouched);
    table->fake.host.memory = MemoryFigures{5e9, 16e9};
    table->fake.host.swapSpace = MemoryFigures{0, 0};
    for (auto* measure : {&memory, &physical, &swap})
        measure->update();
    EXPECT_EQ(shown(memory.value()), "5000000000 of 0..16000000000 ''");
    EXPECT_EQ(shown(physical.value()), "5000000000 of 0..16000000000 ''");
    EXPECT_EQ(shown(swap.value()), "0 of 0..1 ''");
    table->fake.host.memory.reset();
    memory.update();
    EXPECT_EQ(shown(memory.value()), "5000000000 of 0..16000000000 ''") << "the last value stands";
}

TEST(DiskMeasure, watchesAFileSystem) {
    const auto table = MeasureTable::create();
    table->fake.host.fileSystems = {{"/", {100, 30}}, {"/data", {200, 50}}, {"C:/x", {1, 1}}};
    const struct {
        std::string drive, total, inverted;
        std::string_view shown;
    } rows[] = {{"C:", "0", "0", "30 of 0..100 ''"}, {"D:\\", "0", "1", "70 of 0..100 ''"},
        {"/", "1", "1", "100 of 0..100 ''"}, {"/data", "0", "0", "50 of 0..200 ''"},
        {"/data", "true", "01", "50 of 0..200 ''"}, {"C:/x", "1", "0", "1 of 0..1 ''"},
        {"\xC3\xA9:\xC3\xA9", "0", "0", "30 of 0..100 ''"}, {"C:\\Users", "0", "0", Untouched},
        {"", "0", "0", Untouched}, {"/nowhere", "1", "0", Untouched}};
    for (const auto& row : rows) {
        const auto& measure = table->addLinked(
            "M", "FreeDiskSpace", {{"Drive", row.drive}, {"Total", row.total}, {"InvertMeasure", row.inverted}});
        EXPECT_EQ(shown(measure.value()), row.shown) << row.drive;
    }
    auto& measure = table->addLinked("M", "FreeDiskSpace", {});
    setAndUpdate(measure, "Drive", "/data");
    EXPECT_EQ(shown(measure.value()), "30 of 0..100 ''") << "options are read once";
}

TEST(NetMeasure, showsBytesSinceTheUpdateBeforeAndKeepsThePeak) {
    const auto table = MeasureTable::create();
    table->fake.host.network = NetworkBytes{1000, 100};
    auto& in = table->addLinked("I", "NetIn", {});
    auto& out = table->addLinked("O", "NETOUT", {});
    auto& total = table->addLinked("T", "NetTotal", {});
    auto& net = table->addLinked("N", "Net", {});
    EXPECT_EQ(shown(in.value()), Untouched);
    const auto updateAll = [&](std::optional<NetworkBytes> bytes) {
        table->fake.host.network = bytes;
        for (auto* measure : {&in, &out, &total, &net})
            measure->update();
    };
    updateAll(NetworkBytes{1500, 150});
    EXPECT_EQ(shown(in.value()), "500 of 0..500 ''");
    EXPECT_EQ(shown(out.value()), "50 of 0..100 ''");
    EXPECT_EQ(shown(total.value()), "550 of 0..550 ''");
    EXPECT_EQ(net.value(), total.value());
    updateAll(NetworkBytes{1700, 150});
    EXPECT_EQ(shown(in.value()), "200 of 0..500 ''");
    updateAll(std::nullopt);
    EXPECT_EQ(in.value().numericValue, static_cast<double>(std::uint64_t{0} - 1700));
    EXPECT_EQ(in.value().maxValue, in.value().numericValue);
    updateAll(NetworkBytes{10, 10});
    EXPECT_EQ(in.value().numericValue, 10);
}

TEST(TimeMeasure, convertsDirectivesByPlainReplacement) {
    const struct {
        std::string_view format, pattern;
    } rows[] = {{"%H:%M:%S", "HH:mm:ss"}, {"%#d.%#m.%Y", "d.M.yyyy"}, {"%A, %B %d", "EEEE, MMMM dd"},
        {"%#H%#I%#M%#S%#y%#Y", "Hhmsyyyyyy"}, {"%a %b %y %I %p", "EEE MMM yy hh a"}, {"%Z %z", "zzz xx"},
        {"100%%", "100'%'"}, {"%%Y", "yyyyy"}, {"%j %h", "%j %h"}, {"%#A", "%#A"}};
    for (const auto& row : rows)
        EXPECT_EQ(TimeMeasure::convertStrftime(row.format), row.pattern) << row.format;
}

TEST(TimeMeasure, writesDatesOfTheHostsLocaleAndZone) {
    constexpr double At = 1'795'257'005.25; // Saturday 2026-11-21 10:30:05 UTC
    const ScopedEnvironment english({{"LC_ALL", "C.UTF-8"}, {"TZ", "UTC"}});
    EXPECT_EQ(formatted("\"%H:%M\"", At), "10:30");
    EXPECT_EQ(formatted("%#d|%d|%#m|%A|%B|%p|%%", At), "21|21|11|Saturday|November|AM|%");
    EXPECT_EQ(formatted("%S.SSS", At), "05.250");
    EXPECT_EQ(formatted("%j", At), "%j") << "letters without a meaning stay";
    EXPECT_EQ(formatted("jT'n''o'P", At), "jTn'oP");
    EXPECT_EQ(formatted("", At), "");
    const ScopedEnvironment german({{"LC_ALL", ""}, {"LC_TIME", "de_DE.UTF-8"}});
    EXPECT_EQ(formatted("%A %B", At), "Samstag November");
}

TEST(TimeMeasure, followsTheClock) {
    const ScopedEnvironment english({{"LC_ALL", "C.UTF-8"}, {"TZ", "UTC"}});
    const auto table = MeasureTable::create();
    auto& seconds = table->addLinked("T", "Time", {});
    auto& fractions = table->addLinked("F", "Time", {{"Format", "s.SS"}});
    EXPECT_EQ(shown(seconds.value()), "0 of 0..0 '00:00:00'");
    const struct {
        double step;
        std::string_view seconds, fractions;
    } rows[] = {{0.25, "0.25 of 0..0 '00:00:00'", "0.25"}, {0.75, "1 of 0..0 '00:00:01'", "1.00"},
        {0.5, "1.5 of 0..0 '00:00:01'", "1.50"}, {-1, "0.5 of 0..0 '00:00:00'", "0.50"}};
    for (const auto& row : rows) {
        table->fake.clock.wall += row.step;
        seconds.update();
        fractions.update();
        EXPECT_EQ(shown(seconds.value()), row.seconds);
        EXPECT_EQ(fractions.value().stringValue, row.fractions);
    }
    setAndUpdate(seconds, "Format", "%Y");
    EXPECT_EQ(seconds.value().stringValue, "00:00:00") << "the format is read once";
}

} // namespace Ostrel
