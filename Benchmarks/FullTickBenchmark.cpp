// Ticks of a skin with 300 text meters of which 3 change: dynamic ones of the full dialect, whose every option may
// change, against static ones of the base that are bound to measures, in alternating batches. And what a reference
// costs in which nothing changed, and a bang that sets an option with its re-reading.

#include "Comparison.h"
#include "Support/RunningFullSkin.h"
#include "Support/RunningSkin.h"

#include <benchmark/benchmark.h>

#include <string>

namespace Ostrel {

namespace {

constexpr int Meters = 300;
constexpr int Moving = 3;

std::string measures() {
    return "[Rainmeter]\nUpdate=1000\n[Variables]\nAccent=20,30,40\nGap=3\n[Moving]\nMeasure=Calc\n"
           "Formula=Moving+1\n[Still]\nMeasure=Calc\nFormula=12\n";
}

std::string baseSkin() {
    std::string text = measures();
    for (int i = 0; i < Meters; ++i) {
        text += "[Meter" + formatInteger(i) + "]\nMeter=String\nMeasureName=" + (i < Moving ? "Moving" : "Still")
            + "\nX=10\nY=" + formatInteger(i * 20) + "\nW=100\nH=20\nFontSize=10\nFontColor=20,30,40\nText=Value %1\n";
    }
    return text;
}

/// Four references in each meter.
std::string fullSkin() {
    std::string text = measures();
    for (int i = 0; i < Meters; ++i) {
        text += "[Meter" + formatInteger(i) + "]\nMeter=String\nDynamicVariables=1\nX=[Still:]\nY="
            + formatInteger(i * 20) + "\nW=100\nH=(#Gap#+17)\nFontSize=10\nFontColor=#Accent#\nText=Value ["
            + (i < Moving ? "Moving" : "Still") + "]\n";
    }
    return text;
}

void tickOfDynamicMeters(benchmark::State& state) {
    RunningSkin base(baseSkin());
    RunningFullSkin full(fullSkin());
    base.runtime->start();
    full.skin->start();
    compare(
        state,
        [&] {
            return secondsOf([&] {
                full.time.advance(1);
                full.skin->performUpdate();
            });
        },
        [&] {
            return secondsOf([&] {
                base.time.advance(1);
                base.runtime->performUpdate();
            });
        },
        20);
    if (full.option("Meter2", "Text") != "Value " + formatInteger(full.skin->tickCount()))
        state.SkipWithError("wrong text");
}
BENCHMARK(tickOfDynamicMeters)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(100);

/// The same skin less what measures and meters do on their own: what is left are the references.
void unchangedReference(benchmark::State& state) {
    const auto skinWith = [](std::string_view dynamic) {
        std::string text = measures();
        for (int i = 0; i < Meters; ++i) {
            text += "[Meter" + formatInteger(i) + "]\nMeter=Box\nDynamicVariables=" + std::string(dynamic) + "\n";
            for (int option = 0; option < 10; ++option)
                text += "Option" + formatInteger(option) + "=[Still:] #Gap#\n";
        }
        return text;
    };
    RunningFullSkin still(skinWith("0"));
    RunningFullSkin live(skinWith("1"));
    still.skin->start();
    live.skin->start();
    const auto tick = [](RunningFullSkin& skin) {
        return secondsOf([&] {
            skin.time.advance(1);
            skin.skin->performUpdate();
        });
    };
    compare(
        state, [&] { return tick(live); }, [&] { return tick(still); }, 20);
    constexpr double References = Meters * 10 * 2;
    state.counters["ns_per_reference"]
        = (state.counters["ours_us"].value - state.counters["theirs_us"].value) * 1000 / References;
}
BENCHMARK(unchangedReference)->UseManualTime()->Unit(benchmark::kMicrosecond)->Iterations(100);

void setOptionAndRead(benchmark::State& state) {
    RunningFullSkin skin(fullSkin());
    skin.skin->start();
    int value = 0;
    for (auto _ : state) {
        skin.skin->setOption({SectionChoice::Kind::Name, "Meter7"}, "FontColor", ++value % 2 ? "1,2,3" : "4,5,6");
        skin.skin->updateMeters({SectionChoice::Kind::Name, "Meter7"});
    }
    if (skin.option("Meter7", "FontColor") != (value % 2 ? "1,2,3" : "4,5,6"))
        state.SkipWithError("wrong color");
}
BENCHMARK(setOptionAndRead);

void load(benchmark::State& state) {
    const auto full = fullSkin();
    const auto base = baseSkin();
    compare(
        state, [&] { return secondsOf([&] { RunningFullSkin skin(full); }); },
        [&] { return secondsOf([&] { RunningSkin skin(base); }); });
}
BENCHMARK(load)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);

} // namespace

} // namespace Ostrel
