#include "OstrelPlatform/Linux/Players/MprisSelection.h"

#include "OstrelPlatform/Linux/Players/MprisPlayer.h"

namespace Ostrel {

namespace {

using Candidate = MprisSelection::Candidate;

/// Stands for whichever player was used last, which is on the bus itself.
constexpr std::string_view Proxy = "org.mpris.MediaPlayer2.playerctld";

/// The candidate with the most points, of several the first; those with none do not count.
template <typename Points> const MprisPlayer* best(std::span<const Candidate> candidates, Points points) {
    const MprisPlayer* found = nullptr;
    int most = 0;
    for (const auto& candidate : candidates) {
        const int value = points(candidate);
        if (value > most) {
            most = value;
            found = candidate.player;
        }
    }
    return found;
}

} // namespace

const MprisPlayer* MprisSelection::called(std::span<const Candidate> candidates, std::string_view name) {
    return best(candidates, [&](const Candidate& candidate) {
        if (!candidate.player->isCalled(name))
            return 0;
        return 1 + (candidate.player->isPlaying() ? 1 : 0) + (candidate.isSilent ? 0 : 2);
    });
}

const MprisPlayer* MprisSelection::select(std::span<const Candidate> candidates, const PlayerTarget& target) {
    const auto* found = called(candidates, target.name);
    if (found || target.isChosenByUser)
        return found;
    found = best(candidates, [&](const Candidate& candidate) {
        if (candidate.player->busName == Proxy)
            return 0;
        return 1 + (candidate.player->busName == standIn_ ? 1 : 0) + (candidate.player->isPlaying() ? 2 : 0)
            + (candidate.isSilent ? 0 : 4);
    });
    standIn_ = found ? found->busName : std::string();
    return found;
}

} // namespace Ostrel
