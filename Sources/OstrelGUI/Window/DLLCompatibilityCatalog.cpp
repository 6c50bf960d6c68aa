#include "OstrelGUI/Window/DLLCompatibilityCatalog.h"

#include <array>

namespace Ostrel::DLLCompatibilityCatalog {

namespace {

constexpr std::string_view CommonNote = "Rainmeter plugin compatibility layer.";

constexpr auto Layers = std::to_array<DLLCompatibilityLayer>({
    {"external-dll-loader", "External DLL Loader", "Required for any Windows-native Rainmeter plugin binaries.", false},
    {"nowplaying-dll", "NowPlaying.dll",
        "Native macOS implementation. Supports Apple Music and Spotify via AppleScript.", true},
    {"inputtext-dll", "InputText.dll",
        "Native macOS implementation. Supports ExecuteBatch and $UserInput$ command substitution.", true},
    {"webparser-dll", "WebParser.dll", CommonNote, false},
    {"recyclemanager-dll", "RecycleManager.dll",
        "Native macOS implementation. Supports count, size, open, and empty trash commands.", true},
    {"runcommand-dll", "RunCommand.dll", CommonNote, false},
    {"sysinfo-dll", "SysInfo.dll", CommonNote, false},
    {"cpu-dll", "CPU.dll", CommonNote, false},
    {"memory-dll", "Memory.dll", CommonNote, false},
    {"network-dll", "Network.dll", CommonNote, false},
    {"perfmon-dll", "PerfMon.dll", CommonNote, false},
    {"powerplugin-dll", "PowerPlugin.dll", CommonNote, false},
    {"wifistatus-dll", "WiFiStatus.dll", CommonNote, false},
    {"audiolevel-dll", "AudioLevel.dll", CommonNote, false},
    {"mediakey-dll", "MediaKey.dll", CommonNote, false},
    {"usagemonitor-dll", "UsageMonitor.dll", CommonNote, false},
    {"quoteplugin-dll", "QuotePlugin.dll", CommonNote, false},
    {"timezone-dll", "TimeZone.dll", CommonNote, false},
    {"speedfan-dll", "SpeedFan.dll", CommonNote, false},
    {"windowmessage-dll", "WindowMessage.dll", CommonNote, false},
    {"fileview-dll", "FileView.dll", CommonNote, false},
    {"measurelua", "MeasureLua (Lua compatibility)", "Lua measure and API compatibility layer.", false},
    {"actiontimer-dll", "ActionTimer.dll", CommonNote, false},
    {"folderinfo-dll", "FolderInfo.dll", CommonNote, false},
    {"pluginfolder-dll", "PluginFolder.dll", CommonNote, false},
    {"mouse-dll", "Mouse.dll", CommonNote, false},
});

} // namespace

std::span<const DLLCompatibilityLayer> layers() {
    return Layers;
}

} // namespace Ostrel::DLLCompatibilityCatalog
