// One hop of the spectrum analysis (ring, window, transform, power, envelope) against the bare transform of as many
// samples, in alternating batches; and what a widget asks for on each of its updates. "ratio" is ours over the
// transform, by medians.

#include "Comparison.h"
#include "OstrelEngine/Sound/SpectrumAnalyzer.h"
#include "OstrelEngine/Sound/SpectrumBands.h"
#include "OstrelEngine/Sound/Tones.h"

#include <kiss_fftr.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

namespace Ostrel {

namespace {

constexpr double SampleRate = 44100;
constexpr int Hops = 64;

void hopAgainstTransform(benchmark::State& state) {
    const auto size = static_cast<int>(state.range(0));
    const auto hop = static_cast<std::size_t>(size / 2);
    SpectrumAnalyzer analyzer;
    analyzer.configureFFT(size, size / 2, 300, 300);
    const auto sound = tone(1000, SampleRate, hop * Hops, 0.5);
    const std::unique_ptr<kiss_fftr_state, decltype(&std::free)> plan(
        kiss_fftr_alloc(size, 0, nullptr, nullptr), &std::free);
    std::vector<kiss_fft_cpx> bins(static_cast<std::size_t>(size) / 2 + 1);
    const auto transforms = analyzer.transformCount();

    compare(
        state,
        [&] {
            return secondsOf([&] {
                for (std::size_t i = 0; i < Hops; ++i)
                    analyzer.ingestSamples(std::span(sound).subspan(i * hop, hop), SampleRate);
            }) / Hops;
        },
        [&] {
            return secondsOf([&] {
                for (std::size_t i = 0; i + 1 < Hops; ++i)
                    kiss_fftr(plan.get(), sound.data() + i * hop, bins.data());
                kiss_fftr(plan.get(), sound.data(), bins.data());
                benchmark::DoNotOptimize(bins.data());
            }) / Hops;
        });

    const auto power = analyzer.latestMagnitudes();
    const auto loudest = std::ranges::max_element(power) - power.begin();
    if (loudest != std::lround(1000 * size / SampleRate) || (analyzer.transformCount() - transforms) % Hops != 0)
        state.SkipWithError("the tone is not where it should be");
}
BENCHMARK(hopAgainstTransform)->Arg(1024)->Arg(2048)->Arg(8192)->UseManualTime()->Iterations(200);

void bandsOfOneUpdate(benchmark::State& state) {
    SpectrumAnalyzer analyzer;
    analyzer.ingestSamples(tone(1000, SampleRate, 44100, 0.5), SampleRate);
    SpectrumBands bands;
    double sum = 0;
    for (auto _ : state)
        sum += std::ranges::max(bands.computeBands(analyzer.latestMagnitudes(), 64, 20, 16000, SampleRate, 35, 2048));
    if (sum <= 0)
        state.SkipWithError("silence");
}
BENCHMARK(bandsOfOneUpdate)->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace Ostrel
