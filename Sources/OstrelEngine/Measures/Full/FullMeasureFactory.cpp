#include "OstrelEngine/Measures/Full/FullMeasureFactory.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/Full/ActionTimerMeasure.h"
#include "OstrelEngine/Measures/Full/FullAudioLevelMeasure.h"
#include "OstrelEngine/Measures/Full/FullCalcMeasure.h"
#include "OstrelEngine/Measures/Full/FullChameleonMeasure.h"
#include "OstrelEngine/Measures/Full/FullDiskMeasure.h"
#include "OstrelEngine/Measures/Full/FullFileViewMeasure.h"
#include "OstrelEngine/Measures/Full/FullFolderInfoMeasure.h"
#include "OstrelEngine/Measures/Full/FullInputTextMeasure.h"
#include "OstrelEngine/Measures/Full/FullLoopMeasure.h"
#include "OstrelEngine/Measures/Full/FullMemoryMeasure.h"
#include "OstrelEngine/Measures/Full/FullNetMeasure.h"
#include "OstrelEngine/Measures/Full/FullNowPlayingMeasure.h"
#include "OstrelEngine/Measures/Full/FullPingMeasure.h"
#include "OstrelEngine/Measures/Full/FullPowerMeasure.h"
#include "OstrelEngine/Measures/Full/FullProcessMeasure.h"
#include "OstrelEngine/Measures/Full/FullProcessorMeasure.h"
#include "OstrelEngine/Measures/Full/FullQuoteMeasure.h"
#include "OstrelEngine/Measures/Full/FullRecycleManagerMeasure.h"
#include "OstrelEngine/Measures/Full/FullRegistryMeasure.h"
#include "OstrelEngine/Measures/Full/FullRunCommandMeasure.h"
#include "OstrelEngine/Measures/Full/FullScriptMeasure.h"
#include "OstrelEngine/Measures/Full/FullSensorMeasure.h"
#include "OstrelEngine/Measures/Full/FullSoundMeasure.h"
#include "OstrelEngine/Measures/Full/FullStringMeasure.h"
#include "OstrelEngine/Measures/Full/FullStubMeasure.h"
#include "OstrelEngine/Measures/Full/FullSysColorMeasure.h"
#include "OstrelEngine/Measures/Full/FullSysInfoMeasure.h"
#include "OstrelEngine/Measures/Full/FullTimeMeasure.h"
#include "OstrelEngine/Measures/Full/FullUptimeMeasure.h"
#include "OstrelEngine/Measures/Full/FullUsageMonitorMeasure.h"
#include "OstrelEngine/Measures/Full/FullValueShaping.h"
#include "OstrelEngine/Measures/Full/FullWiFiMeasure.h"
#include "OstrelEngine/Measures/Full/WebParserMeasure.h"

#include <algorithm>
#include <optional>

namespace Ostrel::FullMeasureFactory {

namespace {

using Make = std::unique_ptr<BaseMeasure> (*)(const MeasureDefinition&, FullMeasureHost&);

template <typename Measure>
std::unique_ptr<BaseMeasure> make(const MeasureDefinition& definition, FullMeasureHost& host) {
    return std::make_unique<Measure>(definition, host);
}

/// How a section may name a kind of measure.
enum class Spelling { Type, Plugin, Both };

constexpr ShapingRules General;
constexpr ShapingRules Looping{
    .bounds = ShapingRules::Bounds::Own, .inversion = ShapingRules::Inversion::Ignored, .averages = false};
constexpr ShapingRules OwnBounds{.bounds = ShapingRules::Bounds::Own};
constexpr ShapingRules OwnBoundsWithTotal{
    .bounds = ShapingRules::Bounds::Own, .inversion = ShapingRules::Inversion::UnlessTotal};
constexpr ShapingRules NotInverted{.inversion = ShapingRules::Inversion::Ignored};

struct Row {
    /// Of a type or a plugin, in upper case.
    std::string_view name;
    Spelling spelling;
    Make make;
    ShapingRules rules;
};

constexpr Row Rows[] = {
    {"ACTIONTIMER", Spelling::Plugin, make<ActionTimerMeasure>, General},
    {"ADVANCEDCPU", Spelling::Plugin, make<FullUsageMonitorMeasure>, General},
    {"AUDIOLEVEL", Spelling::Plugin, make<FullAudioLevelMeasure>, General},
    {"CALC", Spelling::Type, make<FullCalcMeasure>, General},
    {"CHAMELEON", Spelling::Plugin, make<FullChameleonMeasure>, General},
    {"CONFIGACTIVE", Spelling::Plugin, make<FullAbsentMeasure>, General},
    {"CORETEMP", Spelling::Plugin, make<FullCoreTempMeasure>, General},
    {"CPU", Spelling::Type, make<FullProcessorMeasure>, General},
    {"FILEVIEW", Spelling::Plugin, make<FullFileViewMeasure>, General},
    {"FOLDERINFO", Spelling::Plugin, make<FullFolderInfoMeasure>, General},
    {"FREEDISKSPACE", Spelling::Type, make<FullDiskMeasure>, OwnBoundsWithTotal},
    {"FROSTEDGLASS", Spelling::Plugin, make<FullStubMeasure>, General},
    {"GPMDPPLUGIN", Spelling::Plugin, make<FullNowPlayingMeasure>, General},
    {"HOTKEY", Spelling::Plugin, make<FullStubMeasure>, General},
    {"HWINFO", Spelling::Plugin, make<FullStubMeasure>, General},
    {"INPUTTEXT", Spelling::Plugin, make<FullInputTextMeasure>, NotInverted},
    {"ISFULLSCREEN", Spelling::Plugin, make<FullStubMeasure>, General},
    {"ITUNESPLUGIN", Spelling::Plugin, make<FullNowPlayingMeasure>, General},
    {"LOOP", Spelling::Type, make<FullLoopMeasure>, Looping},
    {"MEDIAKEY", Spelling::Both, make<FullMediaKeyMeasure>, General},
    {"MEMORY", Spelling::Type, make<FullMemoryMeasure>, OwnBoundsWithTotal},
    {"MOUSE", Spelling::Plugin, make<FullStubMeasure>, General},
    {"MSIAFTERBURNER", Spelling::Plugin, make<FullStubMeasure>, General},
    {"NET", Spelling::Type, make<FullNetMeasure>, OwnBounds},
    {"NETIN", Spelling::Type, make<FullNetMeasure>, OwnBounds},
    {"NETOUT", Spelling::Type, make<FullNetMeasure>, OwnBounds},
    {"NETTOTAL", Spelling::Type, make<FullNetMeasure>, OwnBounds},
    {"NOWPLAYING", Spelling::Both, make<FullNowPlayingMeasure>, General},
    {"PERFMON", Spelling::Plugin, make<FullUsageMonitorMeasure>, General},
    {"PHYSICALMEMORY", Spelling::Type, make<FullMemoryMeasure>, OwnBoundsWithTotal},
    {"PINGPLUGIN", Spelling::Plugin, make<FullPingMeasure>, General},
    {"POWERPLUGIN", Spelling::Plugin, make<FullPowerMeasure>, General},
    {"PROCESS", Spelling::Both, make<FullProcessMeasure>, General},
    {"QUOTEPLUGIN", Spelling::Plugin, make<FullQuoteMeasure>, General},
    {"RECYCLEMANAGER", Spelling::Both, make<FullRecycleManagerMeasure>, General},
    {"REGISTRY", Spelling::Type, make<FullRegistryMeasure>, General},
    {"RESMON", Spelling::Plugin, make<FullStubMeasure>, General},
    {"RUNCOMMAND", Spelling::Plugin, make<FullRunCommandMeasure>, General},
    {"SCRIPT", Spelling::Type, make<FullScriptMeasure>, General},
    {"SPEEDFANPLUGIN", Spelling::Plugin, make<FullSpeedFanMeasure>, General},
    {"STRING", Spelling::Type, make<FullStringMeasure>, NotInverted},
    {"SWAPMEMORY", Spelling::Type, make<FullMemoryMeasure>, OwnBoundsWithTotal},
    {"SYSCOLOR", Spelling::Plugin, make<FullSysColorMeasure>, General},
    {"SYSINFO", Spelling::Both, make<FullSysInfoMeasure>, General},
    {"TIME", Spelling::Type, make<FullTimeMeasure>, General},
    {"UPTIME", Spelling::Type, make<FullUptimeMeasure>, General},
    {"USAGEMONITOR", Spelling::Plugin, make<FullUsageMonitorMeasure>, General},
    {"WEBNOWPLAYING", Spelling::Plugin, make<FullNowPlayingMeasure>, General},
    {"WIFISTATUS", Spelling::Both, make<FullWiFiMeasure>, General},
    {"WIN7AUDIOPLUGIN", Spelling::Plugin, make<FullWin7AudioMeasure>, General},
    {"WEBPARSER", Spelling::Both, make<WebParserMeasure>, General},
    {"WINDOWMESSAGEPLUGIN", Spelling::Plugin, make<FullStubMeasure>, General},
    {"WINDOWSNOWPLAYING", Spelling::Plugin, make<FullNowPlayingMeasure>, General},
};

const Row* find(std::string_view type, std::string_view plugin) {
    const auto upper = upperCased(trimmed(type));
    const bool isPlugin = upper == "PLUGIN";
    const auto name = isPlugin ? pluginName(plugin) : upper;
    const auto other = isPlugin ? Spelling::Type : Spelling::Plugin;
    const auto row = std::ranges::find_if(
        Rows, [&](const Row& candidate) { return candidate.name == name && candidate.spelling != other; });
    return row == std::end(Rows) ? nullptr : row;
}

} // namespace

std::string pluginName(std::string_view written) {
    written = trimmed(written);
    written.remove_prefix(written.find_last_of("\\/") + 1);
    if (hasSuffixIgnoringCase(written, ".DLL"))
        written.remove_suffix(4);
    return upperCased(written);
}

bool isServed(std::string_view type, std::string_view plugin) {
    return find(type, plugin) != nullptr;
}

std::unique_ptr<BaseMeasure> create(const MeasureDefinition& definition, FullMeasureHost& host) {
    const auto* row = find(definition.measureType, definition.pluginName.value_or(""));
    if (!row) {
        host.log(LogLevel::Warning, definition.sectionName,
            "Nothing serves the measure " + definition.pluginName.value_or(definition.measureType));
    }
    auto measure = row ? row->make(definition, host) : std::make_unique<StubMeasure>(definition, std::string());
    measure->setShaping(std::make_unique<FullValueShaping>(row ? row->rules : General, host, *measure));
    return measure;
}

} // namespace Ostrel::FullMeasureFactory
