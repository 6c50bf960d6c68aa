#pragma once

#include <cstdint>
#include <span>

namespace Ostrel {

/// How a listener wants the sound cut up. Sizes are samples, times milliseconds, frequencies hertz.
struct SpectrumRequest {
    std::int64_t bands = 64;
    double minFrequency = 20;
    double maxFrequency = 16000;
    double sensitivity = 35;
    std::int64_t fftSize = 2048;
    std::int64_t fftOverlap = 1024;
    std::int64_t fftAttackMs = 300;
    std::int64_t fftDecayMs = 300;

    friend bool operator==(const SpectrumRequest&, const SpectrumRequest&) = default;
};

/// The sound that the machine plays, as bands. One instance serves all measures of all skins.
class AudioSpectrum {
public:
    virtual ~AudioSpectrum() = default;
    /// Levels 0 to 1, one a band, lowest first; empty when there is nothing to analyse. The first call begins to
    /// listen. The view lives until the next call. Main thread.
    virtual std::span<const double> spectrum(const SpectrumRequest& request) = 0;
};

} // namespace Ostrel
