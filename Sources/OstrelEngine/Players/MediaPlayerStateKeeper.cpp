#include "OstrelEngine/Players/MediaPlayerStateKeeper.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Players/MediaPlayerPayload.h"

#include <utility>

namespace Ostrel {

namespace {

std::optional<MediaPlayerState> parse(std::string_view text) {
    if (auto state = MediaPlayerPayload::parseJSONState(text))
        return state;
    return MediaPlayerPayload::parseLegacyDelimitedState(text);
}

/// What tells tracks apart where the player has no name for them.
std::string identifierOf(const MediaPlayerState& state) {
    if (!state.trackIdentifier.empty())
        return state.trackIdentifier;
    return state.artist + "|" + state.album + "|" + state.title + "|" + formatShortest(state.duration) + "|"
        + formatInteger(state.trackNumber) + "|" + formatInteger(state.year);
}

} // namespace

std::shared_ptr<const MediaPlayerState> MediaPlayerStateKeeper::snapshot() const {
    const std::scoped_lock lock(stateLock_);
    return state_;
}

bool MediaPlayerStateKeeper::beginPoll() {
    const std::scoped_lock lock(stateLock_);
    return !std::exchange(pollInFlight_, true);
}

void MediaPlayerStateKeeper::endPoll() {
    const std::scoped_lock lock(stateLock_);
    pollInFlight_ = false;
}

void MediaPlayerStateKeeper::handlePollResult(const std::optional<std::string>& output) {
    const auto text = trimmed(output ? std::string_view(*output) : "NOT_RUNNING");
    if (text != "NOT_RUNNING" && text != "STOPPED") {
        if (auto parsed = parse(text))
            return applyParsedState(std::move(*parsed));
    }
    const std::scoped_lock lock(stateLock_);
    MediaPlayerState state;
    if (text == "NOT_RUNNING") {
        lastTrackIdentifier_.clear();
        trackChangeCounter_ = 0;
    } else if (text == "STOPPED") {
        state.status = 1;
        state.trackChangeSerial = trackChangeCounter_;
    }
    storeLocked(std::move(state));
}

void MediaPlayerStateKeeper::applyParsedState(MediaPlayerState parsed) {
    auto identifier = identifierOf(parsed);
    const std::scoped_lock lock(stateLock_);
    // While it is stopped, a player may already show what it would play next.
    if (parsed.status == 1 && parsed.state != 0 && !identifier.empty() && identifier != lastTrackIdentifier_) {
        ++trackChangeCounter_;
        lastTrackIdentifier_ = std::move(identifier);
    }
    parsed.trackChangeSerial = trackChangeCounter_;
    storeLocked(std::move(parsed));
}

void MediaPlayerStateKeeper::storeLocked(MediaPlayerState state) {
    if (state == *state_)
        return;
    state_ = std::make_shared<const MediaPlayerState>(std::move(state));
    revision_.fetch_add(1, std::memory_order_release);
}

} // namespace Ostrel
