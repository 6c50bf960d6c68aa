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

/// What a measure is made of.
struct Making {
    const MeasureDefinition& definition;
    const std::string& skinPath;
    const Platform& platform;
    MeasureHost& host;
};

using Make = std::unique_ptr<BaseMeasure> (*)(const Making&);

template <typename Measure> std::unique_ptr<BaseMeasure> make(const Making& of) {
    return std::make_unique<Measure>(of.definition, of.skinPath);
}

template <typename Measure> std::unique_ptr<BaseMeasure> makeWithHost(const Making& of) {
    return std::make_unique<Measure>(of.definition, of.skinPath, of.host);
}

template <typename Measure> std::unique_ptr<BaseMeasure> makeOfPlatform(const Making& of) {
    return std::make_unique<Measure>(of.definition, of.skinPath, of.platform);
}

template <typename Measure> std::unique_ptr<BaseMeasure> makeOfPlatformWithHost(const Making& of) {
    return std::make_unique<Measure>(of.definition, of.skinPath, of.platform, of.host);
}

template <typename Measure> std::unique_ptr<BaseMeasure> makeOfStatistics(const Making& of) {
    return std::make_unique<Measure>(of.definition, of.skinPath, of.platform.hostStatistics);
}

std::unique_ptr<BaseMeasure> makeTime(const Making& of) {
    return std::make_unique<TimeMeasure>(of.definition, of.skinPath, of.platform.clock);
}

std::unique_ptr<BaseMeasure> makeWebNowPlaying(const Making& of) {
    return std::make_unique<NowPlayingMeasure>(
        makeNowPlayingAliasDefinition(of.definition, "SPOTIFY", "PlayerType"), of.skinPath, of.platform, of.host);
}

std::unique_ptr<BaseMeasure> makeDesktopPlayer(const Making& of) {
    return std::make_unique<NowPlayingMeasure>(
        makeNowPlayingAliasDefinition(of.definition, "SPOTIFY", "PlayerInfo"), of.skinPath, of.platform, of.host);
}

struct Row {
    /// Of a measure, or the name of a plugin.
    std::string_view type;
    Make make;
};

constexpr Row Types[] = {
    {"TIME", makeTime},
    {"NOWPLAYING", makeOfPlatformWithHost<NowPlayingMeasure>},
    {"CPU", makeOfStatistics<CPUMeasure>},
    {"PHYSICALMEMORY", makeOfStatistics<MemoryMeasure>},
    {"MEMORY", makeOfStatistics<MemoryMeasure>},
    {"SWAPMEMORY", makeOfStatistics<MemoryMeasure>},
    {"FREEDISKSPACE", makeOfStatistics<DiskMeasure>},
    {"NET", makeOfStatistics<NetMeasure>},
    {"NETIN", makeOfStatistics<NetMeasure>},
    {"NETOUT", makeOfStatistics<NetMeasure>},
    {"NETTOTAL", makeOfStatistics<NetMeasure>},
    {"CALC", makeWithHost<CalcMeasure>},
    {"RECYCLEMANAGER", makeOfPlatform<RecycleManagerMeasure>},
    {"SCRIPT", makeWithHost<ScriptMeasure>},
    {"STRING", makeWithHost<StringMeasure>},
};

constexpr Row Plugins[] = {
    {"NOWPLAYING", makeOfPlatformWithHost<NowPlayingMeasure>},
    {"WEBNOWPLAYING", makeWebNowPlaying},
    {"GPMDPPLUGIN", makeDesktopPlayer},
    {"AUDIOLEVEL", makeOfPlatformWithHost<AudioLevelMeasure>},
    {"CHAMELEON", makeOfPlatformWithHost<ChameleonPluginMeasure>},
    {"INPUTTEXT", makeWithHost<InputTextMeasure>},
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
    const MeasureDefinition& definition, const std::string& skinPath, const Platform& platform, MeasureHost& host) {
    const auto type = upperCased(definition.measureType);
    const auto create = type == "PLUGIN" ? findPlugin(definition.pluginName.value_or("")) : find(Types, type);
    return create({definition, skinPath, platform, host});
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
