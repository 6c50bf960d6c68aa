#include "OstrelEngine/Measures/Full/FullNowPlayingMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Measures/Full/FullMeasureFactory.h"
#include "OstrelEngine/Players/MacOSPlayer.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <utility>

namespace Ostrel {

namespace {

struct Renamed {
    std::string_view from;
    std::string_view to;
};

/// The option Command of an old plugin, as player types.
constexpr Renamed OldFields[]
    = {{"GETCURRENTTRACKALBUM", "Album"}, {"GETCURRENTTRACKARTIST", "Artist"}, {"GETCURRENTTRACKARTWORK", "Cover"},
        {"GETCURRENTTRACKGENRE", "Genre"}, {"GETCURRENTTRACKNAME", "Title"}, {"GETCURRENTTRACKRATING", "Rating"},
        {"GETCURRENTTRACKTIME", "Duration"}, {"GETCURRENTTRACKTRACKNUMBER", "Number"}, {"GETCURRENTTRACKYEAR", "Year"},
        {"GETPLAYERPOSITION", "Position"}, {"GETPLAYERPOSITIONPERCENT", "Progress"}, {"GETSOUNDVOLUME", "Volume"}};
constexpr Renamed OldCommands[] = {{"NEXTTRACK", "Next"}, {"PREVIOUSTRACK", "Previous"},
    {"SOUNDVOLUMEUP", "SetVolume +5"}, {"SOUNDVOLUMEDOWN", "SetVolume -5"}, {"POWER", "OpenPlayer"},
    {"QUIT", "ClosePlayer"}, {"TOGGLEITUNES", "TogglePlayer"}};

std::string_view renamed(std::span<const Renamed> table, std::string_view text) {
    const auto row = std::ranges::find(table, upperCased(trimmed(text)), &Renamed::from);
    return row == table.end() ? text : row->to;
}

bool isOldPlugin(const BaseMeasure& measure) {
    return FullMeasureFactory::pluginName(measure.definition().pluginName.value_or("")) == "ITUNESPLUGIN";
}

/// "[Main]" or "Main".
std::string_view withoutBrackets(std::string_view name) {
    name = trimmed(name);
    return name.starts_with('[') && name.ends_with(']') ? trimmed(name.substr(1, name.size() - 2)) : name;
}

std::string_view playerName(const BaseMeasure& measure) {
    return Ostrel::option(measure.options(), "PlayerName"_key).value_or("");
}

} // namespace

void FullNowPlayingMeasure::update() {
    auto& source = player();
    source.update();
    const auto& shown = source.value();
    const auto type = upperCased(trimmed(Ostrel::option(source.options(), "PlayerType"_key).value_or("")));
    if (shown.preferStringValue || type == "DURATION" || type == "POSITION")
        publishText(shown.stringValue, shown.numericValue, shown.minValue, shown.maxValue);
    else
        publishNumber(shown.numericValue, shown.minValue, shown.maxValue);
}

bool FullNowPlayingMeasure::executeCommand(std::string_view command) {
    return player().executeCommand(isOldPlugin(*this) ? renamed(OldCommands, command) : command);
}

NowPlayingMeasure& FullNowPlayingMeasure::player() {
    const auto& owner = playerOwner();
    // Options of both measures decide; their revisions only grow.
    const auto revision = 1 + optionsRevision() + (&owner == this ? 0 : owner.optionsRevision());
    if (std::exchange(madeForRevision_, revision) != revision) {
        MeasureHost& asThis = *this;
        player_
            = std::make_unique<NowPlayingMeasure>(translated(), host().folders().skinFile, host().platform(), asThis);
    }
    return *player_;
}

MeasureDefinition FullNowPlayingMeasure::translated() const {
    MeasureDefinition result = definition();
    result.allOptions = options();
    result.allOptions.remove("Substitute");
    const auto take = [&](const CaseKey& from) {
        if (const auto written = option(from); written && !option("PlayerType"_key))
            result.allOptions.set("PlayerType", std::string(*written));
    };
    take("PlayerInfo"_key);
    if (isOldPlugin(*this))
        result.allOptions.set("PlayerType", std::string(renamed(OldFields, text("Command"_key))));
    const auto& owner = playerOwner();
    const auto name = trimmed(playerName(owner));
    const bool isPlayer = macOSPlayerFrom(name, [](std::string_view) {}).has_value();
    // What no player is named stands for the one that the user chose, which answers for any.
    result.allOptions.set("PlayerName", isPlayer ? std::string(name) : "Spotify");
    if (&owner != this) {
        result.allOptions.remove("TrackChangeAction");
        if (const auto path = Ostrel::option(owner.options(), "PlayerPath"_key))
            result.allOptions.set("PlayerPath", std::string(*path));
    }
    return result;
}

const BaseMeasure& FullNowPlayingMeasure::playerOwner() const {
    constexpr int LongestChain = 8;
    const BaseMeasure* owner = this;
    for (int i = 0; i < LongestChain; ++i) {
        const auto* next = host().measure(withoutBrackets(playerName(*owner)));
        if (!next || next == owner)
            break;
        owner = next;
    }
    return *owner;
}

} // namespace Ostrel
