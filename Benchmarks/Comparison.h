#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

namespace Ostrel {

template <typename Body> double secondsOf(Body body) {
    const auto start = std::chrono::steady_clock::now();
    body();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Times both in alternating batches of one run, so that the machine's moods meet both, and shows the medians and their
/// ratio. Each of the two gives the seconds it took. For use with `UseManualTime`.
template <typename Ours, typename Theirs>
void compare(benchmark::State& state, Ours ours, Theirs theirs, int batch = 1) {
    std::vector<double> ourSeconds;
    std::vector<double> theirSeconds;
    for (auto _ : state) {
        for (int i = 0; i < batch; ++i)
            theirSeconds.push_back(theirs());
        for (int i = 0; i < batch; ++i)
            ourSeconds.push_back(ours());
        state.SetIterationTime(ourSeconds.back());
    }
    if (ourSeconds.empty())
        return;
    state.counters["ours_us"] = median(ourSeconds) * 1e6;
    state.counters["theirs_us"] = median(theirSeconds) * 1e6;
    state.counters["ratio"] = median(ourSeconds) / median(theirSeconds);
}

} // namespace Ostrel
