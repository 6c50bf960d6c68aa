#include "OstrelCore/Text/Numbers.h"
#include "Support/FakeFullHost.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

namespace Ostrel {

namespace {

/// "number of minimum..maximum 'text'"
std::string shown(const BaseMeasure& measure) {
    const auto& value = measure.value();
    auto text = formatGeneral(value.numericValue, 12) + " of " + formatGeneral(value.minValue, 12) + ".."
        + formatGeneral(value.maxValue, 12);
    return value.preferStringValue ? text + " '" + value.stringValue + "'" : text;
}

} // namespace

TEST(FullNet, dividesByTheTimeAndFollowsTheBestWay) {
    FakeFullHost skin;
    auto& details = skin.fake.host.hostDetails;
    details.interfaces
        = {{"wlan0", 2, 1000, 10, "up", true, true, false}, {"eth0", 3, 5000, 0, "up", true, false, true}};
    auto& best = skin.addUpdated("B", "NetIn");
    auto& unknown = skin.addUpdated("U", "NetTotal", {{"Interface", "Intel(R) Wireless-AC"}, {"UseBits", "1"}});
    auto& all = skin.addUpdated("A", "NetIn", {{"Interface", "0"}, {"MaxValue", "8000"}});
    auto& second = skin.addUpdated("S", "NetOut", {{"Interface", "1"}});
    auto& sum = skin.addUpdated("C", "NetIn", {{"Cumulative", "1"}});
    EXPECT_EQ(shown(best), "0 of 0..1");
    skin.fake.clock.uptime += 0.5;
    details.interfaces[0].in += 1000;
    details.interfaces[0].out += 50;
    details.interfaces[1].in += 100;
    const auto updateAll = [&] {
        for (auto* measure : {&best, &unknown, &all, &second, &sum})
            measure->update();
    };
    updateAll();
    EXPECT_EQ(shown(best), "200 of 0..200");
    EXPECT_EQ(shown(unknown), "1600 of 0..1600");
    EXPECT_EQ(shown(all), "2200 of 0..1000") << "the bound is written in bits";
    EXPECT_EQ(shown(second), "100 of 0..100");
    EXPECT_EQ(shown(sum), "5100 of 0..5100");
    skin.fake.clock.uptime += 1;
    details.interfaces[1].in = 7;
    updateAll();
    EXPECT_EQ(shown(best), "0 of 0..200") << "a counter that begins again";
    details.interfaces[1].hasDefaultRoute = false;
    details.interfaces[1].hasCarrier = false;
    details.interfaces[1].state = "down";
    skin.fake.clock.uptime += 1;
    updateAll();
    EXPECT_EQ(shown(best), "0 of 0..200") << "two interfaces are not compared";
    details.interfaces.clear();
    updateAll();
    EXPECT_EQ(shown(best), "0 of 0..200");
}

TEST(FullDisk, showsSpaceLabelAndKind) {
    FakeFullHost skin;
    auto& volumes = skin.fake.host.hostDetails.volumes;
    volumes["C:"] = {Volume::Kind::Fixed, "home", 100, 40, 30};
    volumes["D:"] = {Volume::Kind::Removable, "stick", 10, 5, 5};
    volumes["/srv"] = {Volume::Kind::Network, "", 1000, 1, 1};
    volumes["E:"] = {Volume::Kind::Optical, "film", 5, 0, 0};
    const struct {
        FakeFullHost::Pairs options;
        std::string_view shown;
    } rows[] = {{{}, "30 of 0..100"}, {{{"DiskQuota", "0"}}, "40 of 0..100"},
        {{{"InvertMeasure", "1"}}, "70 of 0..100"}, {{{"Total", "1"}, {"InvertMeasure", "1"}}, "100 of 0..100"},
        {{{"Label", "1"}}, "30 of 0..100 'home'"}, {{{"Type", "1"}}, "4 of 0..7 'Fixed'"},
        {{{"Drive", "D:"}}, "0 of 0..0"}, {{{"Drive", "D:"}, {"IgnoreRemovable", "0"}}, "5 of 0..10"},
        {{{"Drive", "D:"}, {"Label", "1"}}, "0 of 0..0 'stick'"},
        {{{"Drive", "D:"}, {"Type", "1"}}, "3 of 0..7 'Removable'"},
        {{{"Drive", "/srv"}, {"Type", "1"}}, "5 of 0..7 'Network'"}, {{{"Drive", "E:"}}, "0 of 0..0"},
        {{{"Drive", "Q:"}}, "0 of 0..0"}, {{{"Drive", "Q:"}, {"Type", "1"}}, "1 of 0..7 'Removed'"}};
    for (const auto& row : rows)
        EXPECT_EQ(shown(skin.addUpdated("D", "FreeDiskSpace", row.options)), row.shown);
}

TEST(FullPower, readsTheBattery) {
    FakeFullHost skin;
    skin.fake.host.hostDetails.facts[MachineFact::ProcessorMHz] = "2600";
    const auto all = [&skin] {
        std::string result;
        for (const char* state : {"ACLine", "Status", "Status2", "Lifetime", "Percent", "MHz"}) {
            const auto& value = skin.addUpdated("P", "Plugin:PowerPlugin", {{"PowerState", state}}).value();
            result += (value.preferStringValue ? value.stringValue : formatGeneral(value.numericValue)) + " ";
        }
        return result;
    };
    EXPECT_EQ(all(), "1 0 128 Unknown 100 2600 ") << "no battery";
    skin.fake.host.hostDetails.powerFigures = {true, false, false, 20, 5400};
    EXPECT_EQ(all(), "0 3 2 01:30 20 2600 ");
    skin.fake.host.hostDetails.powerFigures = {true, true, true, 90, std::nullopt};
    EXPECT_EQ(all(), "1 1 9 Unknown 90 2600 ");
    skin.fake.host.hostDetails.powerFigures = {true, false, false, 3, 1e300};
    EXPECT_EQ(all(), "0 2 4 Unknown 3 2600 ") << "a battery that never ends";
    EXPECT_EQ(skin.addUpdated("P", "Plugin:PowerPlugin", {{"PowerState", "What"}}).value().numericValue, 0);
}

TEST(FullProcess, findsProgramsByName) {
    FakeFullHost skin;
    skin.fake.host.hostDetails.samples.processes = {{1, "init"}, {7, "Firefox"}};
    const struct {
        std::string name;
        double number;
    } rows[] = {{"firefox.exe", 1}, {"C:\\x\\FIREFOX.EXE", 1}, {"fire", -1}, {"", -1}, {"explorer.exe", 1}};
    for (const auto& row : rows)
        EXPECT_EQ(skin.addUpdated("P", "Process", {{"ProcessName", row.name}}).value().numericValue, row.number);
    EXPECT_EQ(skin.addUpdated("P", "Plugin:Plugins/Process.dll", {{"ProcessName", "init"}}).value().numericValue, 1);
}

TEST(FullSysInfo, tellsFactsAdaptersAndTheZone) {
    FakeFullHost skin;
    auto& details = skin.fake.host.hostDetails;
    details.facts
        = {{MachineFact::ComputerName, "lab"}, {MachineFact::SystemBits, "64"}, {MachineFact::UserID, "1000"}};
    details.interfaces = {{"lo1", 2, 0, 0, "down", false, false, false}, {"eth0", 3, 0, 0, "up", true, false, true}};
    details.adapters["eth0"]
        = {"eth0 (e1000)", "00-11-22-AA-BB-CC", 1, "192.0.2.7", "2001:db8::7", "255.255.255.0", "192.0.2.1", "", 1e9};
    setenv("TZ", "America/New_York", 1);
    tzset();
    skin.fake.clock.wall = 1795284249;
    const struct {
        std::string type, data, shown;
    } rows[] = {{"COMPUTER_NAME", "", "0 'lab'"}, {"os_bits", "", "64"}, {"USER_SID", "", "1000 '1000'"},
        {"DOMAIN_WORKGROUP", "", "0 'WORKGROUP'"}, {"DNS_SERVER", "", "0 ''"}, {"IDLE_TIME", "", "0"},
        {"ADAPTER_DESCRIPTION", "", "0 'eth0 (e1000)'"}, {"ADAPTER_TYPE", "", "6 'Ethernet'"},
        {"ADAPTER_STATE", "lo1", "-1 'Disconnected'"}, {"ADAPTER_STATUS", "1", "-1 'Down'"},
        {"ADAPTER_STATUS", "Best", "1 'Up'"}, {"ADAPTER_RECEIVE_SPEED", "", "1000000000"},
        {"MAC_ADDRESS", "", "0 '00-11-22-AA-BB-CC'"}, {"IP_ADDRESS", "2", "0 '192.0.2.7'"},
        {"IP_ADDRESS_V6", "", "0 '2001:db8::7'"}, {"GATEWAY_ADDRESS_V4", "", "0 '192.0.2.1'"},
        {"IP_ADDRESS", "lo1", "0 ''"}, {"INTERNET_CONNECTIVITY", "", "1"}, {"INTERNET_CONNECTIVITY_V6", "", "-1"},
        {"LAN_CONNECTIVITY_V6", "", "1"}, {"TIMEZONE_BIAS", "", "300"}, {"TIMEZONE_ISDST", "", "0"},
        {"TIMEZONE_DAYLIGHT_BIAS", "", "-60"}, {"TIMEZONE_STANDARD_NAME", "", "0 'Eastern Standard Time'"},
        {"NUM_MONITORS", "", "1"}, {"NO_SUCH_THING", "", "0 ''"}, {"TIMEZONE_", "", "0 ''"}};
    for (const auto& row : rows) {
        const auto& value
            = skin.addUpdated("S", "SysInfo", {{"SysInfoType", row.type}, {"SysInfoData", row.data}}).value();
        EXPECT_EQ(formatGeneral(value.numericValue, 12)
                + (value.preferStringValue ? " '" + value.stringValue + "'" : std::string()),
            row.shown)
            << row.type;
    }
    details.interfaces.clear();
    EXPECT_EQ(skin.addUpdated("S", "SysInfo", {{"SysInfoType", "ADAPTER_STATUS"}}).value().numericValue, -3);
    setenv("TZ", "UTC", 1);
    tzset();
}

} // namespace Ostrel
