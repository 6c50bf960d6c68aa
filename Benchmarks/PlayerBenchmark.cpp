// An update of ten measures of one player whose state has not changed, against ten copies of that state under its lock,
// which is what a measure would need that could not tell whether something is new. "ratio" is ours over the copies, by
// medians; "polls" are those of one interval.

#include "Comparison.h"
#include "OstrelEngine/Measures/MeasureHost.h"
#include "OstrelEngine/Measures/NowPlayingMeasure.h"
#include "OstrelEngine/Players/MediaPlayerBridge.h"
#include "OstrelEngine/Players/MediaPlayerBridges.h"
#include "OstrelPlatform/PlayerTransport.h"
#include "OstrelPlatform/VirtualSerialQueue.h"
#include "Support/FakePlatform.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace Ostrel {

namespace {

constexpr const char* Payload
    = R"({"artist":"An artist of usual length","title":"A title that does not fit into its own object",
    "album":"An album of a usual length too","duration":"240","position":"61","state":"1","volume":"40",
    "coverArtPath":"/home/somebody/.cache/covers/0123456789abcdef.jpg","trackIdentifier":"file:///music/a.ogg"})";

class CountingTransport final : public PlayerTransport {
public:
    explicit CountingTransport(int& polls)
        : polls_(polls) { }
    Poll poll(const PlayerTarget&) override {
        ++polls_;
        return [] { return Payload; };
    }
    Work perform(const PlayerTarget&, const PlayerCommand&) override { return nullptr; }

private:
    int& polls_;
};

void updateTenMeasures(benchmark::State& state) {
    constexpr int Rounds = 1000;
    FakePlatform fake;
    int polls = 0;
    VirtualSerialQueue* queue = nullptr;
    MediaPlayerBridges bridges({.makeTransport = [&] { return std::make_unique<CountingTransport>(polls); },
        .makeQueue =
            [&](std::string_view) {
                auto made = std::make_unique<VirtualSerialQueue>(fake.clock);
                queue = made.get();
                return made;
            },
        .clock = fake.clock,
        .log = [](std::string_view) {}});
    fake.platform.mediaPlayers = &bridges;
    std::vector<std::unique_ptr<BaseMeasure>> measures;
    class Alone final : public MeasureHost {
        BaseMeasure* measure(std::string_view) const override { return nullptr; }
        void runAction(const BaseMeasure&, std::string_view) override { }
    } host;
    for (const char* type :
        {"Artist", "Title", "Album", "Cover", "Position", "Duration", "Progress", "State", "Volume", "Status"}) {
        MeasureDefinition definition{type, "NowPlaying", std::nullopt, {}};
        definition.allOptions.set("PlayerName", "Spotify");
        definition.allOptions.set("PlayerType", type);
        measures.push_back(std::make_unique<NowPlayingMeasure>(definition, "/skin.ini", fake.platform, host));
    }
    const auto updateAll = [&] {
        for (const auto& measure : measures)
            measure->update();
    };
    updateAll();
    queue->runDue();
    updateAll();
    const auto& keeper = bridges.shared(MacOSPlayer::spotify)->keeper();
    compare(
        state,
        [&] {
            return secondsOf([&] {
                for (int i = 0; i < Rounds; ++i)
                    updateAll();
            }) / Rounds;
        },
        [&] {
            return secondsOf([&] {
                for (int i = 0; i < Rounds * 10; ++i)
                    benchmark::DoNotOptimize(keeper.state());
            }) / Rounds;
        });
    state.counters["polls"] = polls;
    if (polls != 1 || measures[4]->value().stringValue != "01:01")
        state.SkipWithError("not the one poll, or not its answer");
}
BENCHMARK(updateTenMeasures)->UseManualTime()->Iterations(100);

} // namespace

} // namespace Ostrel
