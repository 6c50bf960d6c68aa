#include "OstrelDialect/FullTypes.h"

#include "OstrelCore/Text/Text.h"

namespace Ostrel::FullTypes {

namespace {

using enum FullType::Support;

constexpr FullType Measures[] = {
    {"Calc"},
    {"CPU"},
    {"FreeDiskSpace"},
    {"Loop", Whole, {}, "loops"},
    {"MediaKey", Whole, {}, "media keys"},
    {"Memory"},
    {"Net"},
    {"NetIn"},
    {"NetOut"},
    {"NetTotal"},
    {"NowPlaying"},
    {"PhysicalMemory"},
    {"Plugin"},
    {"Process", Whole, {}, "lists of programs"},
    {"RecycleManager"},
    {"Registry", Partly, "answers only the keys that have a counterpart on this desktop", "registry values"},
    {"Script", Whole, {}, "scripts"},
    {"String"},
    {"SwapMemory"},
    {"SysInfo", Whole, {}, "facts about the system"},
    {"Time"},
    {"Uptime", Whole, {}, "the time since the start"},
    {"WebParser", Whole, {}, "web addresses"},
    {"WiFiStatus", Partly, "shows what the network service knows and never searches", "wireless networks"},
};

constexpr std::string_view OtherSensors = "names sensors of another machine's software; it reads 0 here";
constexpr std::string_view NoCounterpart = "has no counterpart on this desktop; it reads 0 here";

constexpr FullType Plugins[] = {
    {"ActionTimer", Whole, {}, "timed actions"},
    {"AdvancedCPU", Partly, "counts processor time by program", "processor time by program"},
    {"AudioLevel"},
    {"Chameleon"},
    {"ConfigActive", Whole, {}, "questions about other skins"},
    {"CoreTemp", Partly, "reads the sensors that this machine tells", "temperatures"},
    {"DarkContextMenu", Nothing, NoCounterpart},
    {"FileView", Partly, "has no context menu and no properties of files", "lists of files"},
    {"Focus", Nothing, NoCounterpart},
    {"FolderInfo", Whole, {}, "sizes of folders"},
    {"FrostedGlass", Partly, "asks for a blurred background, which the desktop decides here"},
    {"Hotkey", Nothing, "asks for keys of the whole desktop, which are not taken here"},
    {"HWiNFO", Nothing, OtherSensors},
    {"InputText"},
    {"IsFullScreen", Whole, {}, "windows that fill the screen"},
    {"iTunesPlugin"},
    {"JSONParser", Nothing, NoCounterpart},
    {"MagickMeter", Nothing, NoCounterpart},
    {"MediaKey", Whole, {}, "media keys"},
    {"Mouse"},
    {"MSIAfterburner", Nothing, OtherSensors},
    {"NowPlaying"},
    {"PerfMon", Partly, "serves the counters that this system has", "system counters"},
    {"PingPlugin", Whole, {}, "times of answers over the network"},
    {"PowerPlugin", Whole, {}, "the battery"},
    {"PowershellRM", Nothing, NoCounterpart},
    {"Process", Whole, {}, "lists of programs"},
    {"QuotePlugin", Whole, {}, "texts picked from files"},
    {"RecycleManager"},
    {"ResMon", Partly, "counts open files and windows only", "counts of resources"},
    {"RunCommand", Whole, {}, "output of programs"},
    {"SIV", Nothing, OtherSensors},
    {"SpeedFanPlugin", Partly, "reads the sensors that this machine tells", "temperatures"},
    {"SysColor"},
    {"SysInfo", Whole, {}, "facts about the system"},
    {"UsageMonitor", Partly, "serves the counters that this system has", "system counters"},
    {"VirtualDesktop", Nothing, NoCounterpart},
    {"WebNowPlaying"},
    {"WebParser", Whole, {}, "web addresses"},
    {"WiFiStatus", Partly, "shows what the network service knows and never searches", "wireless networks"},
    {"Win7AudioPlugin", Whole, {}, "the volume"},
    {"WindowMessagePlugin", Nothing, "sends messages to windows, which is not possible here"},
    {"WindowsNowPlaying"},
};

constexpr FullType Meters[] = {
    {"Bar"},
    {"Bitmap", Whole, {}, "frames of pictures"},
    {"Button", Whole, {}, "buttons with states"},
    {"Histogram", Whole, {}, "histograms"},
    {"Image"},
    {"Line", Whole, {}, "graphs"},
    {"Rotator", Whole, {}, "turning pictures"},
    {"Roundline", Whole, {}, "round lines"},
    {"Shape"},
    {"String"},
};

} // namespace

std::span<const FullType> measures() {
    return Measures;
}

std::span<const FullType> plugins() {
    return Plugins;
}

std::span<const FullType> meters() {
    return Meters;
}

const FullType* find(std::span<const FullType> types, std::string_view name) {
    for (const auto& type : types) {
        if (equalsIgnoringCase(name, type.name))
            return &type;
    }
    return nullptr;
}

std::string_view pluginName(std::string_view written) {
    if (const auto end = written.find_last_of("\\/"); end != std::string_view::npos)
        written.remove_prefix(end + 1);
    if (hasSuffixIgnoringCase(written, ".DLL"))
        written.remove_suffix(4);
    return trimmed(written);
}

} // namespace Ostrel::FullTypes
