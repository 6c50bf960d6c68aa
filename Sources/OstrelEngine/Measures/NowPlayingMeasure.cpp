#include "OstrelEngine/Measures/NowPlayingMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/MeasureHost.h"
#include "OstrelEngine/Players/MediaPlayerBridge.h"
#include "OstrelEngine/Players/MediaPlayerBridges.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>

namespace Ostrel {

namespace {

using Type = NowPlayingType;

/// In the order of the types.
constexpr std::string_view TypeNames[] = {"NONE", "ARTIST", "TITLE", "ALBUM", "GENRE", "LYRICS", "COVER", "FILE",
    "DURATION", "POSITION", "PROGRESS", "STATE", "STATUS", "VOLUME", "SHUFFLE", "REPEAT", "RATING", "NUMBER", "YEAR"};

Type readType(const BaseMeasure& measure, const Platform& platform) {
    const auto text = trimmed(option(measure.options(), "PlayerType"_key).value_or(""));
    if (text.empty())
        return Type::STATUS;
    const auto name = std::ranges::find(TypeNames, upperCased(text));
    if (name != std::end(TypeNames))
        return static_cast<Type>(name - std::begin(TypeNames));
    if (platform.mediaPlayers)
        platform.mediaPlayers->log()(
            "[NowPlaying] Invalid PlayerType=\"" + std::string(text) + "\" in section [" + measure.name() + "].");
    return Type::NONE;
}

bool isStringType(Type type) {
    return type >= Type::ARTIST && type <= Type::FILE;
}

/// Of the empty value: the times have none before there is a track.
double maxForType(Type type) {
    switch (type) {
    case Type::PROGRESS:
    case Type::VOLUME:
        return 100;
    case Type::STATE:
        return 2;
    case Type::STATUS:
    case Type::SHUFFLE:
    case Type::REPEAT:
        return 1;
    case Type::RATING:
        return 5;
    default:
        return 0;
    }
}

const std::string& text(const MediaPlayerState& state, Type type) {
    switch (type) {
    case Type::ARTIST:
        return state.artist;
    case Type::TITLE:
        return state.title;
    case Type::ALBUM:
        return state.album;
    case Type::GENRE:
        return state.genre;
    case Type::LYRICS:
        return state.lyrics;
    case Type::COVER:
        return state.coverArtPath;
    default:
        return state.filePath;
    }
}

std::int64_t integer(const MediaPlayerState& state, Type type) {
    switch (type) {
    case Type::STATE:
        return state.state;
    case Type::STATUS:
        return state.status;
    case Type::SHUFFLE:
        return state.shuffle;
    case Type::REPEAT:
        return state.repeatMode;
    case Type::RATING:
        return state.rating;
    case Type::NUMBER:
        return state.trackNumber;
    default:
        return state.year;
    }
}

/// "[Section]" without its brackets and blanks; absent when it is no reference.
std::optional<std::string_view> parseParentSectionReference(std::string_view name) {
    if (name.size() < 2 || !name.starts_with('[') || !name.ends_with(']'))
        return std::nullopt;
    const auto inside = trimmed(name.substr(1, name.size() - 2));
    return inside.empty() ? std::nullopt : std::optional(inside);
}

std::string twoDigits(std::int64_t value) {
    return (value >= 0 && value < 10 ? "0" : "") + formatInteger(value);
}

} // namespace

NowPlayingMeasure::NowPlayingMeasure(
    const MeasureDefinition& definition, std::string skinPath, const Platform& platform, MeasureHost& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host)
    , playerType_(readType(*this, platform))
    , disableLeadingZero_(option("DisableLeadingZero"_key) == "1")
    , effectivePlayerPath_(trimmed(option("PlayerPath"_key).value_or("")))
    , effectiveTrackChangeAction_(option("TrackChangeAction"_key).value_or("")) {
    readPlayerName(platform);
    publish(0, "", isStringType(playerType_), 0, maxForType(playerType_));
}

void NowPlayingMeasure::readPlayerName(const Platform& platform) {
    const auto name = trimmed(option("PlayerName"_key).value_or(""));
    if (const auto section = parseParentSectionReference(name)) {
        parentSectionName_ = *section;
        return;
    }
    static const LogLine silent = [](std::string_view) {};
    if (const auto player = macOSPlayerFrom(name, platform.mediaPlayers ? platform.mediaPlayers->log() : silent)) {
        isParentOwner_ = true;
        if (platform.mediaPlayers)
            bridge_ = platform.mediaPlayers->shared(*player);
    } else if (!name.empty()) {
        parentSectionName_ = name;
    }
}

void NowPlayingMeasure::resolveReferences() {
    if (bridge_ || !parentSectionName_)
        return;
    const auto* parent = dynamic_cast<const NowPlayingMeasure*>(host_.measure(*parentSectionName_));
    if (!parent)
        return;
    bridge_ = parent->bridge_;
    effectivePlayerPath_ = parent->effectivePlayerPath_;
    effectiveTrackChangeAction_ = parent->effectiveTrackChangeAction_;
}

bool NowPlayingMeasure::executeCommand(std::string_view text) {
    if (bridge_)
        bridge_->executeCommand(text, effectivePlayerPath_);
    return true;
}

void NowPlayingMeasure::update() {
    if (!bridge_)
        return;
    bridge_->pollIfNeeded();
    const auto revision = bridge_->keeper().revision();
    if (revision == publishedRevision_)
        return publishUnchanged();
    const auto state = bridge_->keeper().snapshot();
    // The action may update this very measure, which then has to publish for those that read it.
    runTrackChangeActionIfNeeded(*state);
    publishState(*state);
    publishedRevision_ = revision;
}

void NowPlayingMeasure::runTrackChangeActionIfNeeded(const MediaPlayerState& state) {
    if (!isParentOwner_ || effectiveTrackChangeAction_.empty())
        return;
    if (state.trackChangeSerial == 0 || state.trackChangeSerial == lastSeenTrackChangeSerial_)
        return;
    lastSeenTrackChangeSerial_ = state.trackChangeSerial;
    host_.runAction(*this, effectiveTrackChangeAction_);
}

void NowPlayingMeasure::publishState(const MediaPlayerState& state) {
    switch (playerType_) {
    case Type::NONE:
        return publish(0, "", false, 0, 0);
    case Type::DURATION:
        return publish(state.duration, formatTime(state.duration), false, 0, state.duration);
    case Type::POSITION:
        return publish(state.position, formatTime(state.position), false, 0, state.duration);
    case Type::PROGRESS:
        return publish(state.progress, formatFixed(state.progress, 0), false, 0, maxForType(playerType_));
    case Type::VOLUME:
        return publish(state.volume, formatFixed(state.volume, 0), false, 0, maxForType(playerType_));
    default:
        break;
    }
    if (isStringType(playerType_))
        return publish(0, text(state, playerType_), true, 0, 0);
    const auto number = integer(state, playerType_);
    publish(static_cast<double>(number), formatInteger(number), false, 0, maxForType(playerType_));
}

std::string NowPlayingMeasure::formatTime(double seconds) const {
    const auto total = numericAsInt64(seconds);
    const auto hours = total / 3600;
    const auto minutes = total % 3600 / 60;
    const auto rest = twoDigits(total % 60);
    if (hours >= 1)
        return formatInteger(hours) + ":" + twoDigits(minutes) + ":" + rest;
    return (disableLeadingZero_ ? formatInteger(minutes) : twoDigits(minutes)) + ":" + rest;
}

} // namespace Ostrel
