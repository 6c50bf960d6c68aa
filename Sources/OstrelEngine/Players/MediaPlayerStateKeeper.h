#pragma once

#include "OstrelEngine/Players/MediaPlayerState.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// The latest complete state of one player, made of the answers to polls. Any thread.
class MediaPlayerStateKeeper {
public:
    MediaPlayerState state() const { return *snapshot(); }
    /// The same without a copy; never null.
    std::shared_ptr<const MediaPlayerState> snapshot() const;
    /// Grows when the state changes, so that a reader need not look at one that it knows.
    std::uint64_t revision() const { return revision_.load(std::memory_order_acquire); }

    /// False when one is under way already.
    bool beginPoll();
    void endPoll();
    /// Takes a player's answer; absent when it gave none.
    void handlePollResult(const std::optional<std::string>& output);

private:
    void applyParsedState(MediaPlayerState parsed);
    void storeLocked(MediaPlayerState state);

    /// Guards the members below.
    mutable std::mutex stateLock_;
    std::shared_ptr<const MediaPlayerState> state_ = std::make_shared<MediaPlayerState>();
    bool pollInFlight_ = false;
    std::string lastTrackIdentifier_;
    std::int64_t trackChangeCounter_ = 0;
    /// Written under the lock.
    std::atomic<std::uint64_t> revision_ = 1;
};

} // namespace Ostrel
