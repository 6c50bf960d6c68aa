#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace Ostrel {

/// Sums bins of power into logarithmic bands and maps their loudness to 0..1. Keeps the band edges of the last call,
/// and its results, so that a steady caller allocates nothing. One thread at a time.
class SpectrumBands {
public:
    /// More bands than there are bins to tell them apart are only memory.
    static constexpr std::int64_t MaximumBands = 65536;
    /// Bends the loudness curve: full power reads 1 / 1.55.
    static constexpr double MappedBandCompression = 0.55;

    /// Upper edges in hertz. The first lies half a band above the minimum, the last half a band below the maximum.
    static std::vector<double> computeBandFrequencies(std::int64_t count, double minFrequency, double maxFrequency);

    /// Empty when there is nothing to compute. The view lives until the next call.
    std::span<const double> computeBands(std::span<const float> magnitudes, std::int64_t bands, double minFrequency,
        double maxFrequency, double sampleRate, double sensitivity, int fftSize);

private:
    void updateEdges(std::int64_t bands, double low, double high);
    void integrate(std::span<const float> magnitudes, double low, double sampleRate, int fftSize);

    std::vector<double> cachedBandFrequencies_;
    double cachedLow_ = 0;
    double cachedHigh_ = 0;
    std::vector<double> levels_;
};

} // namespace Ostrel
