// One tick of a skin with 300 measures, without meters: what a skin costs when nothing of it is shown anew.
// `per_measure` is the time of one of them.

#include "Support/RunningSkin.h"

#include <benchmark/benchmark.h>

#include <string>

namespace Ostrel {

namespace {

constexpr int Groups = 75;

/// Four measures a group: two formulas, a text and one that has no counterpart here. With `Every` the formulas of all
/// groups follow a counter, and so do the texts.
enum class Changing { Nothing, Every };

std::string measures(Changing changing) {
    std::string text = "[Rainmeter]\nUpdate=1000\n[Counter]\nMeasure=Calc\nFormula=";
    text += changing == Changing::Every ? "Counter+1\n" : "1\n";
    for (int i = 0; i < Groups; ++i) {
        const std::string number = formatInteger(i);
        text += "[Scaled" + number + "]\nMeasure=Calc\nFormula=(Counter*" + number + "+12.5)/100\nMaxValue=50\n";
        text += "[Share" + number + "]\nMeasure=Calc\nFormula=CLAMP(Scaled" + number + ",0,1)*250\nDisabled=0\n";
        text += "[Label" + number + "]\nMeasure=String\nString=[Scaled" + number + "] of [Share" + number + ":%]%\n";
        text += "[Stub" + number + "]\nMeasure=Registry\nRegKey=x\n";
    }
    return text;
}

void tick(benchmark::State& state, Changing changing) {
    RunningSkin skin(measures(changing));
    skin.runtime->start();
    for (auto _ : state) {
        skin.time.advance(1);
        skin.runtime->performUpdate();
    }
    const double expected = changing == Changing::Every ? skin.runtime->tickCount() : 1;
    if (skin.number("Counter") != expected || skin.number("Scaled4") != (expected * 4 + 12.5) / 100)
        state.SkipWithError("wrong values");
    state.counters["per_measure"] = benchmark::Counter(static_cast<double>(skin.runtime->allMeasures().size()),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void unchanged(benchmark::State& state) {
    tick(state, Changing::Nothing);
}
BENCHMARK(unchanged);

void changing(benchmark::State& state) {
    tick(state, Changing::Every);
}
BENCHMARK(changing);

} // namespace

} // namespace Ostrel
