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

/// How loud the sound was in the last moments: root mean square and greatest amplitude, 1 is full scale.
struct SoundLevel {
    double rms = 0;
    double peak = 0;
};

/// The sound that the machine plays, as bands. One instance serves all measures of all skins.
class AudioSpectrum {
public:
    virtual ~AudioSpectrum() = default;
    /// Levels 0 to 1, one a band, lowest first; empty when there is nothing to analyse. The first call begins to
    /// listen. The view lives until the next call. Main thread.
    virtual std::span<const double> spectrum(const SpectrumRequest& request) = 0;
    /// Of all channels together. Begins to listen as well. Main thread.
    virtual SoundLevel level() { return {}; }
};

} // namespace Ostrel
