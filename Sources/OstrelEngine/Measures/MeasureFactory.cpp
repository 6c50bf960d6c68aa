#include "OstrelEngine/Measures/MeasureFactory.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/AudioLevelMeasure.h"
#include "OstrelEngine/Measures/CPUMeasure.h"
#include "OstrelEngine/Measures/CalcMeasure.h"
#include "OstrelEngine/Measures/ChameleonPluginMeasure.h"
#include "OstrelEngine/Measures/DiskMeasure.h"
#include "OstrelEngine/Measures/InputTextMeasure.h"
#include "OstrelEngine/Measures/MemoryMeasure.h"
#include "OstrelEngine/Measures/MousePluginMeasure.h"
#include "OstrelEngine/Measures/NetMeasure.h"
#include "OstrelEngine/Measures/NowPlayingMeasure.h"
#include "OstrelEngine/Measures/RecycleManagerMeasure.h"
#include "OstrelEngine/Measures/RunCommandMeasure.h"
#include "OstrelEngine/Measures/ScriptMeasure.h"
#include "OstrelEngine/Measures/StringMeasure.h"
#include "OstrelEngine/Measures/SysColorPluginMeasure.h"
#include "OstrelEngine/Measures/TimeMeasure.h"
#include "OstrelEngine/Measures/Win7AudioPluginMeasure.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <span>

namespace Ostrel::MeasureFactory {

namespace {

using Make = std::unique_ptr<BaseMeasure> (*)(const MeasureDefinition&, const std::string&, const Platform&);

template <typename Measure>
std::unique_ptr<BaseMeasure> make(const MeasureDefinition& definition, const std::string& skinPath, const Platform&) {
    return std::make_unique<Measure>(definition, skinPath);
}

template <typename Measure>
std::unique_ptr<BaseMeasure> makeOfHost(
    const MeasureDefinition& definition, const std::string& skinPath, const Platform& platform) {
    return std::make_unique<Measure>(definition, skinPath, platform.hostStatistics);
}

std::unique_ptr<BaseMeasure> makeTime(
    const MeasureDefinition& definition, const std::string& skinPath, const Platform& platform) {
    return std::make_unique<TimeMeasure>(definition, skinPath, platform.clock);
}

template <typename Measure>
std::unique_ptr<BaseMeasure> makeOfPlatform(
    const MeasureDefinition& definition, const std::string& skinPath, const Platform& platform) {
    return std::make_unique<Measure>(definition, skinPath, platform);
}

std::unique_ptr<BaseMeasure> makeWebNowPlaying(
    const MeasureDefinition& definition, const std::string& skinPath, const Platform& platform) {
    return makeOfPlatform<NowPlayingMeasure>(
        makeNowPlayingAliasDefinition(definition, "SPOTIFY", "PlayerType"), skinPath, platform);
}

std::unique_ptr<BaseMeasure> makeDesktopPlayer(
    const MeasureDefinition& definition, const std::string& skinPath, const Platform& platform) {
    return makeOfPlatform<NowPlayingMeasure>(
        makeNowPlayingAliasDefinition(definition, "SPOTIFY", "PlayerInfo"), skinPath, platform);
}

struct Row {
    /// Of a measure, or the name of a plugin.
    std::string_view type;
    Make make;
};

constexpr Row Types[] = {
    {"TIME", makeTime},
    {"NOWPLAYING", makeOfPlatform<NowPlayingMeasure>},
    {"CPU", makeOfHost<CPUMeasure>},
    {"PHYSICALMEMORY", makeOfHost<MemoryMeasure>},
    {"MEMORY", makeOfHost<MemoryMeasure>},
    {"SWAPMEMORY", makeOfHost<MemoryMeasure>},
    {"FREEDISKSPACE", makeOfHost<DiskMeasure>},
    {"NET", makeOfHost<NetMeasure>},
    {"NETIN", makeOfHost<NetMeasure>},
    {"NETOUT", makeOfHost<NetMeasure>},
    {"NETTOTAL", makeOfHost<NetMeasure>},
    {"CALC", make<CalcMeasure>},
    {"RECYCLEMANAGER", makeOfPlatform<RecycleManagerMeasure>},
    {"SCRIPT", make<ScriptMeasure>},
    {"STRING", make<StringMeasure>},
};

constexpr Row Plugins[] = {
    {"NOWPLAYING", makeOfPlatform<NowPlayingMeasure>},
    {"WEBNOWPLAYING", makeWebNowPlaying},
    {"GPMDPPLUGIN", makeDesktopPlayer},
    {"AUDIOLEVEL", makeOfPlatform<AudioLevelMeasure>},
    {"CHAMELEON", makeOfPlatform<ChameleonPluginMeasure>},
    {"INPUTTEXT", make<InputTextMeasure>},
    {"MOUSE", make<MousePluginMeasure>},
    {"RECYCLEMANAGER", makeOfPlatform<RecycleManagerMeasure>},
    {"RUNCOMMAND", makeOfPlatform<RunCommandMeasure>},
    {"SYSCOLOR", makeOfPlatform<SysColorPluginMeasure>},
    {"WIN7AUDIOPLUGIN", make<Win7AudioPluginMeasure>},
};

Make find(std::span<const Row> rows, std::string_view type) {
    const auto row = std::ranges::find(rows, type, &Row::type);
    return row == rows.end() ? make<StubMeasure> : row->make;
}

Make findPlugin(std::string_view name) {
    return find(Plugins, upperCased(replacingOccurrencesIgnoringCase(name, ".dll", "")));
}

} // namespace

std::unique_ptr<BaseMeasure> create(
    const MeasureDefinition& definition, const std::string& skinPath, const Platform& platform) {
    const auto type = upperCased(definition.measureType);
    const auto create = type == "PLUGIN" ? findPlugin(definition.pluginName.value_or("")) : find(Types, type);
    return create(definition, skinPath, platform);
}

MeasureDefinition makeNowPlayingAliasDefinition(
    MeasureDefinition definition, std::string_view fallbackPlayerName, std::string_view typeOptionKey) {
    auto& options = definition.allOptions;
    const auto* type = options.find(typeOptionKey);
    if (!options.find("PlayerType") && type && !type->empty())
        options.set("PlayerType", std::string(*type));
    const auto* player = options.find("PlayerName");
    if (!player || player->empty())
        options.set("PlayerName", std::string(fallbackPlayerName));
    definition.measureType = "NowPlaying";
    return definition;
}

} // namespace Ostrel::MeasureFactory
