#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/NowPlayingMeasure.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace Ostrel {

/// One field of a music player's state. Which player, what it answers and its commands are those of
/// `NowPlayingMeasure`; here the options of every plugin that shows players become those of that measure, a name that
/// no player has stands for the player that the user chose, and numbers have no text of their own.
class FullNowPlayingMeasure final : public FullMeasure, private MeasureHost {
public:
    using FullMeasure::FullMeasure;

    void update() override;
    bool executeCommand(std::string_view command) override;

private:
    // What the player's measure asks for is asked as this one.
    BaseMeasure* measure(std::string_view name) const override { return host().measure(name); }
    void runAction(const BaseMeasure&, std::string_view action) override { host().runAction(*this, action); }

    NowPlayingMeasure& player();
    MeasureDefinition translated() const;
    /// The measure that names the player: this one, or the one that `PlayerName` leads to.
    const BaseMeasure& playerOwner() const;

    std::unique_ptr<NowPlayingMeasure> player_;
    std::uint64_t madeForRevision_ = 0;
};

} // namespace Ostrel
