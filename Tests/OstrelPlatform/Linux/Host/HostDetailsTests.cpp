#include "OstrelPlatform/Linux/Host/HostTexts.h"
#include "OstrelPlatform/Linux/Host/LinuxHostDetails.h"
#include "OstrelPlatform/Linux/Host/ProcFigures.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace Ostrel {

using namespace HostTexts;

TEST(HostTexts, readsProcessorsOneByOne) {
    const auto two = ProcFigures::parseProcessors(
        "cpu  10 1 5 100 7 2 3 4 50 0\ncpu0 6 1 3 50 7 2 3 4 50 0\ncpu2 4 0 2 50 0 0 0 0 0 0\nintr 1 2 3\n");
    EXPECT_EQ(two, (std::vector<ProcessorTimes>{{25, 107}, {19, 57}, {}, {6, 50}}));
    EXPECT_TRUE(ProcFigures::parseProcessors("cpu0 1 2 3 4\n").empty());
    EXPECT_EQ(ProcFigures::parseProcessors("cpu  1 2 3 4\ncpu99999999 1 2 3 4\ncpux 1 2 3 4\n").size(), 1U);
}

TEST(HostTexts, readsInterfacesAndRoutes) {
    const auto interfaces = parseNetDev("Inter-| Receive\n face |bytes\n    lo: 1 2 3 4 5 6 7 8 9\n"
                                        "  eth0:80146831 1859 0 0 0 0 0 0 88944 990 0 0 0 0 0 0\n broken: 1 2\n");
    ASSERT_EQ(interfaces.size(), 1U);
    EXPECT_EQ(interfaces[0].name, "eth0");
    EXPECT_EQ(interfaces[0].in, 80146831U);
    EXPECT_EQ(interfaces[0].out, 88944U);
    constexpr std::string_view Routes
        = "Iface\tDestination\tGateway\nwlan0\t00000000\t0101A8C0\t0003\t0\t0\t600\t00000000\t0\t0\t0\n"
          "eth0\t00000000\t010200C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n"
          "eth0\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\nbad\t00000000\tXYZ\t3\t0\t0\t0\t00000000\n";
    const auto route = parseDefaultRoute4(Routes);
    ASSERT_TRUE(route);
    EXPECT_EQ(route->interface, "eth0") << "the lower metric";
    EXPECT_EQ(route->gateway, "192.0.2.1");
    const std::string zeros(32, '0');
    const auto six = parseDefaultRoute6(zeros + " 00 " + zeros + " 00 fe800000000000000000000000000001"
        + " 00000064 00000001 00000000 00000003 eth0\n");
    ASSERT_TRUE(six);
    EXPECT_EQ(six->gateway, "fe80:0:0:0:0:0:0:1");
    EXPECT_FALSE(parseDefaultRoute6("junk\n"));
    constexpr std::string_view Wireless
        = "Inter-| sta-|\n face | tus | link\n wlan0: 0000   35.  -56.  -256        0\n";
    EXPECT_EQ(parseWirelessQuality(Wireless, "wlan0"), 50);
    EXPECT_EQ(parseWirelessQuality(Wireless, "wlan1"), 0);
}

TEST(HostTexts, readsProcessesDisksAndMounts) {
    const auto stat = parseProcessStat("42 (a (b) c) S 1 42 42 0 -1 4194560 1 2 3 4 250 50 0 0 20 0 1 0 9 8 7");
    ASSERT_TRUE(stat);
    EXPECT_EQ(stat->name, "a (b) c");
    EXPECT_EQ(stat->ticks, 300);
    for (const std::string_view broken : {"", "42", "42 (x", ") (", "42 (x) S 1 2"})
        EXPECT_FALSE(parseProcessStat(broken)) << broken;
    EXPECT_EQ(parseCommandName(std::string_view("/usr/lib/long-name\0--secret", 27)), "long-name");
    const auto disks = parseDiskStats("   8 0 sda 10 0 100 5 20 0 200 7 0 1500 12\n 8 1 short 1\n");
    EXPECT_EQ(disks, (std::vector<DiskActivity>{{"sda", 51200, 102400, 1.5}}));
    const auto fields = parseFields("# no\nNAME=\"Debian GNU/Linux\"\nID='x'\nNAME=again\nempty\n", '=');
    EXPECT_EQ(fields, (std::map<std::string, std::string>{{"NAME", "Debian GNU/Linux"}, {"ID", "x"}}));
    const auto mounts = parseMounts(
        "27 1 254:0 / / rw - ext4 /dev/sda2 rw\n28 27 8:1 / /home rw shared:1 - ext4 /dev/sda1 rw\n"
        "29 27 0:40 / /mnt/a\\040b ro - nfs4 host:/x ro\n30 27 8:17 / /media/stick rw - vfat /dev/sdb1 rw\n"
        "31 27 0:5 / /tmp rw - tmpfs tmpfs rw\n32 27 8:1 / /srv rw - ext4 /dev/sda1 rw\nbroken\n33 27 - x\n");
    ASSERT_EQ(mounts.size(), 6U);
    EXPECT_EQ(mounts[2].path, "/mnt/a b");
    const struct {
        std::string_view drive, path;
    } rows[] = {{"C:", "/home"}, {"c:\\", "/home"}, {"D:", "/mnt/a b"}, {"E:", "/media/stick"}, {"F:", ""},
        {"/srv/x", "/srv/x"}, {"", ""}, {"CC:", ""}, {"C:\\Windows", ""}};
    for (const auto& row : rows)
        EXPECT_EQ(LinuxVolumes::pathOf(row.drive, mounts, "/home/ada"), row.path) << row.drive;
    EXPECT_EQ(
        parseResolver("search lab.example\nnameserver 192.0.2.53\nnameserver 192.0.2.54\n").nameServer, "192.0.2.53");
}

TEST(LinuxHostDetails, readsAMachineOfFiles) {
    TemporaryFolder machine;
    const auto write = [&machine](const std::string& path, const std::string& text) { machine.write(path, text); };
    write("proc/net/dev", "h\nh\n wlan0: 5 0 0 0 0 0 0 0 6 0\n eth0: 1 0 0 0 0 0 0 0 2 0\n");
    write("sys/class/net/eth0/ifindex", "2\n");
    write("sys/class/net/eth0/operstate", "up\n");
    write("sys/class/net/eth0/carrier", "1\n");
    write("sys/class/net/eth0/address", "00:11:22:aa:bb:cc\n");
    write("sys/class/net/eth0/speed", "1000\n");
    write("sys/class/net/eth0/device/uevent", "DRIVER=e1000\n");
    write("sys/class/net/wlan0/ifindex", "3\n");
    write("sys/class/net/wlan0/wireless/x", "");
    write("sys/class/hwmon/hwmon3/name", "nvme\n");
    write("sys/class/hwmon/hwmon3/temp1_input", "41850\n");
    write("sys/class/hwmon/hwmon10/name", "coretemp\n");
    write("sys/class/hwmon/hwmon10/temp2_input", "50000\n");
    write("sys/class/hwmon/hwmon10/temp2_crit", "100000\n");
    write("sys/class/hwmon/hwmon10/temp2_label", "Core 0\n");
    write("sys/class/hwmon/hwmon10/temp3_input", "junk\n");
    write("sys/class/hwmon/hwmon10/fan1_input", "1200\n");
    write("sys/class/power_supply/AC/type", "Mains\n");
    write("sys/class/power_supply/AC/online", "0\n");
    write("sys/class/power_supply/BAT0/type", "Battery\n");
    write("sys/class/power_supply/BAT0/status", "Discharging\n");
    write("sys/class/power_supply/BAT0/capacity", "40\n");
    write("sys/class/power_supply/BAT0/energy_now", "20000000\n");
    write("sys/class/power_supply/BAT0/power_now", "10000000\n");
    write("sys/class/power_supply/mouse/type", "Battery\n");
    write("sys/class/power_supply/mouse/scope", "Device\n");
    write("etc/os-release", "PRETTY_NAME=\"Lab OS 1 (fir)\"\nNAME=Lab\nVERSION_ID=1\n");
    write("proc/cpuinfo", "model name\t: Chip 9\nmodel name\t: Chip 8\n");
    write("proc/12/stat", "12 (shell) S 1 1 1 0 -1 0 0 0 0 0 100 100 0 0\n");
    write("proc/12/statm", "100 50 20 1 0 1 0\n");
    write("proc/13/stat", "gone");
    write("proc/14/stat", "14 (averyveryverylo) S 1 1 1 0 -1 0 0 0 0 0 0 0 0 0\n");
    write("proc/14/cmdline", std::string("/opt/averyveryverylongname\0--password=x", 39));
    write("proc/loadavg", "0.20 0.18 0.12 1/80 11206\n");
    LinuxHostDetails details(machine.path());
    const auto& interfaces = details.networkInterfaces();
    ASSERT_EQ(interfaces.size(), 2U);
    EXPECT_EQ(interfaces[0], (NetworkInterface{"eth0", 2, 1, 2, "up", true, false, false}));
    EXPECT_TRUE(interfaces[1].isWireless);
    const auto adapter = details.adapter("eth0");
    EXPECT_EQ(adapter.hardwareAddress, "00-11-22-AA-BB-CC");
    EXPECT_EQ(adapter.speed, 1e9);
    EXPECT_EQ(adapter.description, "eth0 (e1000)");
    EXPECT_EQ(details.adapter("../../etc").hardwareAddress, "");
    using Kind = Sensor::Kind;
    EXPECT_EQ(details.sensors(),
        (std::vector<Sensor>{{Kind::Temperature, "coretemp", "Core 0", 50, 100.0},
            {Kind::Fan, "coretemp", "", 1200, {}}, {Kind::Temperature, "nvme", "", 41.85, {}}}));
    EXPECT_EQ(details.power(), (PowerFigures{true, false, false, 40, 7200.0}));
    EXPECT_EQ(details.fact(MachineFact::SystemName), "Lab OS 1 (fir)");
    EXPECT_EQ(details.fact(MachineFact::SystemVersion), "Lab 1");
    EXPECT_EQ(details.fact(MachineFact::ProcessorName), "Chip 9");
    EXPECT_EQ(details.fact(MachineFact::BoardName), "");
    EXPECT_EQ(details.threadCount(), 80);
    const auto& processes = details.processes().processes;
    ASSERT_EQ(processes.size(), 2U);
    EXPECT_EQ(processes[0].name, "shell");
    EXPECT_EQ(processes[0].processorSeconds, 2);
    EXPECT_EQ(processes[1].name, "averyveryverylongname") << "without arguments";
    EXPECT_EQ(details.volume("/").kind, Volume::Kind::Missing) << "no mounts";

    // One sample a wake.
    machine.write("sys/class/net/eth0/operstate", "down\n");
    EXPECT_EQ(details.networkInterfaces()[0].state, "up");
    details.beginWake();
    EXPECT_EQ(details.networkInterfaces()[0].state, "down");
}

TEST(LinuxHostDetails, readsThisMachine) {
    LinuxHostDetails details;
    EXPECT_GT(details.processes().processes.size(), 0U);
    EXPECT_NE(details.fact(MachineFact::ComputerName), "");
    EXPECT_GT(details.volume("C:").total, 0);
    EXPECT_GE(details.volume("/").available, 0);
}

} // namespace Ostrel
