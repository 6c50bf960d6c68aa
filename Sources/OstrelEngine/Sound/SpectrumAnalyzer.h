#pragma once

#include "OstrelPlatform/AudioSpectrum.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct kiss_fftr_state;

namespace Ostrel {

/// Turns a stream of mono samples into smoothed power per frequency bin, one transform a hop. Samples in, power out;
/// nothing is allocated but when the size changes. One thread at a time.
///
/// The scale: a bin holds |2X|^2 / sqrt(N), X the windowed sum over N samples, and bin 0 holds DC and Nyquist together.
/// The constants of the band mapping are tuned to it.
class SpectrumAnalyzer {
public:
    static constexpr int DefaultFFTSize = 2048;
    static constexpr int MinimumFFTSize = 64;
    static constexpr int MaximumFFTSize = 16384;
    static constexpr int DefaultFFTAttack = 300;
    static constexpr int DefaultFFTDecay = 300;

    SpectrumAnalyzer();
    ~SpectrumAnalyzer();

    /// The nearest power of two within the limits; a tie goes down.
    static int sanitizeFFTSize(std::int64_t value);
    /// How much of the old power is left after one transform; 0 follows at once.
    static float envelopeCoefficient(std::int64_t milliseconds, double updatesPerSecond);

    /// Takes any values. A new size forgets sound and power, a new overlap keeps them.
    void configureFFT(std::int64_t size, std::int64_t overlap, std::int64_t attackMs, std::int64_t decayMs);
    /// A rate that is not positive is ignored.
    void setSampleRate(double sampleRate);
    /// A rate that is not positive means the one before. Samples that are not finite leave no lasting trace.
    void ingestSamples(std::span<const float> samples, double sampleRate);

    int fftSize() const { return fftSize_; }
    double latestSampleRate() const { return latestSampleRate_; }
    /// Half of the size, bin 0 first.
    std::span<const float> latestMagnitudes() const { return latestMagnitudes_; }
    /// Of the last samples, as many as a transform takes; 1 is full scale.
    SoundLevel level() const;
    /// Transforms since the start.
    std::uint64_t transformCount() const { return transformCount_; }

private:
    struct PlanDeleter {
        void operator()(kiss_fftr_state* plan) const;
    };
    struct Bin {
        float real = 0;
        float imaginary = 0;
    };

    int hop() const;
    void rebuildTransform(int size);
    void refreshFFTCoefficients();
    void processFFT();
    void followPower();

    int fftSize_ = 0;
    int fftOverlap_ = 0;
    std::int64_t fftAttackMs_ = 0;
    std::int64_t fftDecayMs_ = 0;
    std::unique_ptr<kiss_fftr_state, PlanDeleter> fftPlan_;
    std::vector<float> fftWindow_;
    /// The last N samples; the oldest stands at `fftWriteIndex_`.
    std::vector<float> fftRingBuffer_;
    std::size_t fftWriteIndex_ = 0;
    int fftSamplesUntilProcess_ = 1;
    std::vector<float> fftTempInput_;
    /// N/2 + 1, the last one Nyquist.
    std::vector<Bin> fftBins_;
    float fftAttackCoefficient_ = 0;
    float fftDecayCoefficient_ = 0;
    std::vector<float> latestMagnitudes_;
    double latestSampleRate_ = 44100;
    std::uint64_t transformCount_ = 0;
};

} // namespace Ostrel
