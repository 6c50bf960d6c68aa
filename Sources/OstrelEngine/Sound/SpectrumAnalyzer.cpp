#include "OstrelEngine/Sound/SpectrumAnalyzer.h"

#include <kiss_fftr.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numbers>

namespace Ostrel {

namespace {

/// Rates that differ by less are one rate that wobbles.
constexpr double SampleRateTolerance = 0.5;

std::vector<float> normalisedHannWindow(int size) {
    std::vector<float> window(static_cast<std::size_t>(size));
    for (int n = 0; n < size; ++n) {
        const double angle = 2 * std::numbers::pi * n / size;
        window[static_cast<std::size_t>(n)] = static_cast<float>(0.8165 * (1 - std::cos(angle)));
    }
    return window;
}

void multiply(const float* samples, const float* window, float* product, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        product[i] = samples[i] * window[i];
}

/// One broken sample must not silence a bin for good, so what is not finite is nothing; and numbers below the normal
/// range, where a fading envelope would end and stay, cost a hundred times as much as others.
float normalOrZero(float power) {
    using Limits = std::numeric_limits<float>;
    return power >= Limits::min() && power <= Limits::max() ? power : 0;
}

} // namespace

void SpectrumAnalyzer::PlanDeleter::operator()(kiss_fftr_state* plan) const {
    kiss_fftr_free(plan);
}

SpectrumAnalyzer::SpectrumAnalyzer() {
    configureFFT(DefaultFFTSize, DefaultFFTSize / 2, DefaultFFTAttack, DefaultFFTDecay);
}

SpectrumAnalyzer::~SpectrumAnalyzer() = default;

SoundLevel SpectrumAnalyzer::level() const {
    double squares = 0;
    double peak = 0;
    for (const float sample : fftRingBuffer_) {
        if (!std::isfinite(sample))
            continue;
        squares += static_cast<double>(sample) * sample;
        peak = std::max(peak, std::fabs(static_cast<double>(sample)));
    }
    const auto count = static_cast<double>(std::max<std::size_t>(fftRingBuffer_.size(), 1));
    return {std::sqrt(squares / count), peak};
}

int SpectrumAnalyzer::sanitizeFFTSize(std::int64_t value) {
    const auto bounded = static_cast<unsigned>(std::clamp<std::int64_t>(value, MinimumFFTSize, MaximumFFTSize));
    const unsigned lower = std::bit_floor(bounded);
    const unsigned upper = std::bit_ceil(bounded);
    return static_cast<int>(upper - bounded < bounded - lower ? upper : lower);
}

float SpectrumAnalyzer::envelopeCoefficient(std::int64_t milliseconds, double updatesPerSecond) {
    if (milliseconds < 1 || !(updatesPerSecond > 0))
        return 0;
    const double transforms = updatesPerSecond * static_cast<double>(milliseconds) * 0.001;
    if (!(transforms > 0))
        return 0;
    // A decimal logarithm under a natural exponential: the fall times of skins are tuned to this mix of bases.
    return static_cast<float>(std::exp(std::log10(0.01) / transforms));
}

void SpectrumAnalyzer::configureFFT(
    std::int64_t size, std::int64_t overlap, std::int64_t attackMs, std::int64_t decayMs) {
    const int newSize = sanitizeFFTSize(size);
    const int newOverlap = static_cast<int>(std::clamp<std::int64_t>(overlap, 0, newSize - 1));
    const auto newAttack = std::max<std::int64_t>(0, attackMs);
    const auto newDecay = std::max<std::int64_t>(0, decayMs);
    const bool transformChanges = !fftPlan_ || newSize != fftSize_;
    const bool overlapChanges = newOverlap != fftOverlap_;
    const bool envelopeChanges = newAttack != fftAttackMs_ || newDecay != fftDecayMs_;

    fftOverlap_ = newOverlap;
    fftAttackMs_ = newAttack;
    fftDecayMs_ = newDecay;
    if (transformChanges)
        rebuildTransform(newSize);
    if (transformChanges || overlapChanges)
        fftSamplesUntilProcess_ = hop();
    if (transformChanges || overlapChanges || envelopeChanges)
        refreshFFTCoefficients();
}

void SpectrumAnalyzer::setSampleRate(double sampleRate) {
    if (!(sampleRate > 0))
        return;
    latestSampleRate_ = sampleRate;
    refreshFFTCoefficients();
}

void SpectrumAnalyzer::ingestSamples(std::span<const float> samples, double sampleRate) {
    if (samples.empty())
        return;
    const double rate = sampleRate > 0 ? sampleRate : latestSampleRate_;
    const bool rateMoves = std::fabs(rate - latestSampleRate_) > SampleRateTolerance;
    latestSampleRate_ = rate;
    if (rateMoves)
        refreshFFTCoefficients();

    while (!samples.empty()) {
        const auto count = std::min({samples.size(), static_cast<std::size_t>(fftSamplesUntilProcess_),
            fftRingBuffer_.size() - fftWriteIndex_});
        std::copy_n(samples.begin(), count, fftRingBuffer_.begin() + static_cast<std::ptrdiff_t>(fftWriteIndex_));
        samples = samples.subspan(count);
        fftWriteIndex_ = (fftWriteIndex_ + count) % fftRingBuffer_.size();
        fftSamplesUntilProcess_ -= static_cast<int>(count);
        if (fftSamplesUntilProcess_ < 1) {
            processFFT();
            fftSamplesUntilProcess_ = hop();
        }
    }
}

int SpectrumAnalyzer::hop() const {
    return std::max(1, fftSize_ - fftOverlap_);
}

void SpectrumAnalyzer::rebuildTransform(int size) {
    const auto count = static_cast<std::size_t>(size);
    fftSize_ = size;
    fftPlan_.reset(kiss_fftr_alloc(size, 0, nullptr, nullptr));
    fftWindow_ = normalisedHannWindow(size);
    fftRingBuffer_.assign(count, 0);
    fftTempInput_.assign(count, 0);
    fftBins_.assign(count / 2 + 1, {});
    latestMagnitudes_.assign(count / 2, 0);
    fftWriteIndex_ = 0;
}

void SpectrumAnalyzer::refreshFFTCoefficients() {
    const double updatesPerSecond = std::max(1.0, latestSampleRate_ / hop());
    fftAttackCoefficient_ = envelopeCoefficient(fftAttackMs_, updatesPerSecond);
    fftDecayCoefficient_ = envelopeCoefficient(fftDecayMs_, updatesPerSecond);
}

void SpectrumAnalyzer::processFFT() {
    static_assert(sizeof(Bin) == sizeof(kiss_fft_cpx) && alignof(Bin) == alignof(kiss_fft_cpx));
    const auto older = fftRingBuffer_.size() - fftWriteIndex_;
    multiply(fftRingBuffer_.data() + fftWriteIndex_, fftWindow_.data(), fftTempInput_.data(), older);
    multiply(fftRingBuffer_.data(), fftWindow_.data() + older, fftTempInput_.data() + older, fftWriteIndex_);
    kiss_fftr(fftPlan_.get(), fftTempInput_.data(), reinterpret_cast<kiss_fft_cpx*>(fftBins_.data()));
    // Packed form: Nyquist stands where the imaginary part of DC, which is 0, would.
    fftBins_.front().imaginary = fftBins_.back().real;
    followPower();
    ++transformCount_;
}

void SpectrumAnalyzer::followPower() {
    const auto scale = static_cast<float>(1 / std::sqrt(static_cast<double>(fftSize_)));
    const float attack = fftAttackCoefficient_;
    const float decay = fftDecayCoefficient_;
    const Bin* bin = fftBins_.data();
    for (float& magnitude : latestMagnitudes_) {
        const float real = 2 * bin->real;
        const float imaginary = 2 * bin->imaginary;
        ++bin;
        const float power = (real * real + imaginary * imaginary) * scale;
        const float target = power > 0 ? power : 0;
        const float old = magnitude;
        const float coefficient = old <= target ? attack : decay;
        magnitude = normalOrZero(target + coefficient * (old - target));
    }
}

} // namespace Ostrel
