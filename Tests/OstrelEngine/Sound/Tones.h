#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace Ostrel {

inline std::vector<float> tone(double hertz, double rate, std::size_t count, double amplitude = 1) {
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double phase = 2 * std::numbers::pi * hertz * static_cast<double>(i) / rate;
        samples[i] = static_cast<float>(amplitude * std::sin(phase));
    }
    return samples;
}

} // namespace Ostrel
