// A formula or expression from its text, never seen before, against a small script engine that evaluates the same text
// in a heap it already has. Both run in alternating batches of one run; `faster` is the ratio of their medians.

#include "OstrelEngine/Measures/CalcMeasure.h"
#include "OstrelEngine/Runtime/NumericExpression.h"

#include <benchmark/benchmark.h>
#include <duktape.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

namespace {

using Evaluate = std::optional<double> (*)(std::string_view text);

/// What skins ask of a tick: scaling a reading, a place in a row, a share of a range.
constexpr std::string_view Formulas[] = {"62.5*2", "(37+12.5)/100", "120*0.35-(64-12)/2", "((75-25)/2)%7+1.5",
    "(1-0.62)*(250-2*18)+36", "(16384000-12582912)/16384000*100"};
constexpr std::string_view Conditions[]
    = {"62.5*2", "(37>12.5)&&(1!=2)", "120*0.35<=64-12?1:0", "((75-25)/2)%7==4", "(1-0.62)*(250-2*18)+36"};

class ScriptEngine {
public:
    std::optional<double> evaluate(std::string_view text) {
        if (duk_peval_lstring(context_.get(), text.data(), text.size()) != 0) {
            duk_pop(context_.get());
            return std::nullopt;
        }
        const double value = duk_to_number(context_.get(), -1);
        duk_pop(context_.get());
        return value;
    }

private:
    std::unique_ptr<duk_context, decltype(&duk_destroy_heap)> context_{duk_create_heap_default(), duk_destroy_heap};
};

template <typename Work> double secondsOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
    return values[values.size() / 2];
}

/// A batch of ours takes about as long as one of the engine's, so that a disturbance hits both alike.
void compare(benchmark::State& state, std::span<const std::string_view> texts, Evaluate evaluate) {
    constexpr int Rounds = 100;
    ScriptEngine engine;
    std::vector<double> ours;
    std::vector<double> theirs;
    for (const auto text : texts) {
        if (evaluate(text) != engine.evaluate(text))
            state.SkipWithError(("another result for " + std::string(text)).c_str());
    }
    for (auto _ : state) {
        ours.push_back(secondsOf([&] {
            for (int round = 0; round < Rounds; ++round) {
                for (const auto text : texts)
                    benchmark::DoNotOptimize(evaluate(text));
            }
        }) / Rounds);
        theirs.push_back(secondsOf([&] {
            for (const auto text : texts)
                benchmark::DoNotOptimize(engine.evaluate(text));
        }));
    }
    if (ours.empty())
        return;
    const auto count = static_cast<double>(texts.size());
    state.counters["ours_ns"] = median(ours) / count * 1e9;
    state.counters["engine_ns"] = median(theirs) / count * 1e9;
    state.counters["faster"] = median(theirs) / median(ours);
}

void formula(benchmark::State& state) {
    compare(state, Formulas, CalcMeasure::evaluateIfValid);
}
BENCHMARK(formula)->Iterations(500);

void expression(benchmark::State& state) {
    compare(state, Conditions, NumericExpression::evaluate);
}
BENCHMARK(expression)->Iterations(500);

} // namespace

} // namespace Ostrel
