#include "OstrelCore/Report/KnownTypes.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <array>

namespace Ostrel::KnownTypes {

namespace {

using namespace std::string_view_literals;

constexpr std::array SupportedMeasures = {"CPU"sv, "MEMORY"sv, "PHYSICALMEMORY"sv, "SWAPMEMORY"sv, "FREEDISKSPACE"sv,
    "NET"sv, "NETIN"sv, "NETOUT"sv, "NETTOTAL"sv, "TIME"sv, "CALC"sv, "STRING"sv, "WEBPARSER"sv, "UPTIME"sv, "LOOP"sv,
    "PLUGIN"sv, "SCRIPT"sv, "MEDIAKEY"sv, "RECYCLEMANAGER"sv, "NOWPLAYING"sv};
constexpr std::array IncompatibleMeasures = {"REGISTRY"sv};
constexpr std::array PartialMeasures = {"SYSINFO"sv, "PROCESS"sv};
constexpr std::array SupportedMeters
    = {"STRING"sv, "IMAGE"sv, "BAR"sv, "HISTOGRAM"sv, "LINE"sv, "ROUNDLINE"sv, "ROTATOR"sv, "BUTTON"sv, "SHAPE"sv};
constexpr std::array IncompatibleMeters = {"ACTIVENET"sv};
constexpr std::array IncompatiblePlugins
    = {"ITUNES"sv, "MEDIAKEY"sv, "PERFMON"sv, "POWERSHELL"sv, "PROCESS"sv, "QUOTE"sv, "SPEEDFAN"sv, "SYSINFO"sv,
        "VIRTUALDESKTOPS"sv, "WEBPARSER"sv, "WIFI"sv, "WIN7AUDIO"sv, "WINDOWMESSAGE"sv};
constexpr std::array SupportedPlugins = {"NOWPLAYING"sv, "INPUTTEXT"sv, "RECYCLEMANAGER"sv, "AUDIOLEVEL"sv,
    "WIN7AUDIOPLUGIN"sv, "WEBNOWPLAYING"sv, "GPMDPPLUGIN"sv, "MOUSE"sv, "RUNCOMMAND"sv, "CHAMELEON"sv, "SYSCOLOR"sv};

} // namespace

std::span<const std::string_view> supportedMeasures() {
    return SupportedMeasures;
}
std::span<const std::string_view> incompatibleMeasures() {
    return IncompatibleMeasures;
}
std::span<const std::string_view> partialMeasures() {
    return PartialMeasures;
}
std::span<const std::string_view> supportedMeters() {
    return SupportedMeters;
}
std::span<const std::string_view> incompatibleMeters() {
    return IncompatibleMeters;
}
std::span<const std::string_view> incompatiblePlugins() {
    return IncompatiblePlugins;
}
std::span<const std::string_view> supportedPlugins() {
    return SupportedPlugins;
}

bool contains(std::span<const std::string_view> set, std::string_view name) {
    return std::any_of(set.begin(), set.end(), [name](auto member) { return equalsIgnoringCase(member, name); });
}

bool isPluginSupported(std::string_view name) {
    return contains(SupportedPlugins, name);
}

bool isMeasureKnown(std::string_view type) {
    return contains(SupportedMeasures, type) || contains(IncompatibleMeasures, type) || contains(PartialMeasures, type);
}

bool isMeterKnown(std::string_view type) {
    return contains(SupportedMeters, type) || contains(IncompatibleMeters, type);
}

} // namespace Ostrel::KnownTypes
