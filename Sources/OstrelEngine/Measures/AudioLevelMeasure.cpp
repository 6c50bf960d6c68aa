#include "OstrelEngine/Measures/AudioLevelMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Measures/CalcMeasure.h"
#include "OstrelEngine/Measures/IntegerConversion.h"
#include "OstrelEngine/Measures/MeasureHost.h"
#include "OstrelEngine/Sound/AudioLevelSpectrumSource.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace Ostrel {

namespace {

constexpr double FirstUpdateMs = 10;
constexpr double LongestUpdateMs = 250;

double smoothingAlpha(double deltaTimeMs, std::int64_t nominalMs, double extraSmoothingMs) {
    const double tau = std::max(0.0, static_cast<double>(nominalMs)) + extraSmoothingMs;
    return tau > 0 ? 1 - std::exp(-deltaTimeMs / tau) : 1;
}

} // namespace

AudioLevelMeasure::AudioLevelMeasure(
    const MeasureDefinition& definition, std::string skinPath, const Platform& platform, MeasureHost& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host)
    , audioSpectrum_(platform.audioSpectrum)
    , clock_(platform.clock) {
    publish(0, "", false, 0, 1);
}

void AudioLevelMeasure::update() {
    readType();
    switch (type_) {
    case Type::Root:
        return updateSpectrumRoot();
    case Type::Band:
        return updateBand();
    case Type::DeviceList:
        return updateDeviceList();
    }
}

void AudioLevelMeasure::resolveReferences() {
    const auto parent = option("Parent"_key).value_or("");
    parentMeasure_ = parent.empty() ? nullptr : dynamic_cast<AudioLevelMeasure*>(host_.measure(parent));
}

void AudioLevelMeasure::readType() {
    if (typeRevision_ == optionsRevision())
        return;
    typeRevision_ = optionsRevision();
    const auto type = trimmed(option("Type"_key).value_or(""));
    type_ = equalsIgnoringCase(type, "BAND")     ? Type::Band
        : equalsIgnoringCase(type, "DEVICELIST") ? Type::DeviceList
                                                 : Type::Root;
    const auto band = parseInteger(option("BandIdx"_key).value_or("1")).value_or(1);
    bandIndex_ = static_cast<std::size_t>(std::max<std::int64_t>(1, band) - 1);
}

const SpectrumRequest& AudioLevelMeasure::request() {
    if (requestRevision_ != optionsRevision()) {
        requestRevision_ = optionsRevision();
        request_ = readRequest();
    }
    return request_;
}

SpectrumRequest AudioLevelMeasure::readRequest() const {
    const SpectrumRequest defaults;
    SpectrumRequest result;
    result.bands = std::min(integerOption("Bands"_key, defaults.bands, 1), SpectrumBands::MaximumBands);
    result.minFrequency = std::max(1.0, numericOption("FreqMin"_key, defaults.minFrequency));
    result.maxFrequency = std::max(result.minFrequency + 1, numericOption("FreqMax"_key, defaults.maxFrequency));
    result.sensitivity = std::max(1.0, numericOption("Sensitivity"_key, defaults.sensitivity));
    result.fftSize = integerOption("FFTSize"_key, defaults.fftSize, 64);
    result.fftOverlap = integerOption("FFTOverlap"_key, result.fftSize / 2, 0);
    result.fftAttackMs = integerOption("FFTAttack"_key, defaults.fftAttackMs, 0);
    result.fftDecayMs = integerOption("FFTDecay"_key, defaults.fftDecayMs, 0);
    return result;
}

double AudioLevelMeasure::numericOption(const CaseKey& key, double defaultValue) const {
    const auto text = trimmed(option(key).value_or(""));
    if (text.empty())
        return defaultValue;
    if (const auto number = parseDouble(text); number && std::isfinite(*number))
        return *number;
    const auto result = CalcMeasure::evaluateIfValid(text);
    return result && std::isfinite(*result) ? *result : defaultValue;
}

std::int64_t AudioLevelMeasure::integerOption(
    const CaseKey& key, std::int64_t defaultValue, std::int64_t minimum) const {
    return std::max(minimum, integerOrStop(std::round(numericOption(key, static_cast<double>(defaultValue)))));
}

void AudioLevelMeasure::updateSpectrumRoot() {
    const auto& wanted = request();
    const auto count = static_cast<std::size_t>(wanted.bands);
    if (spectrum_.size() != count)
        spectrum_.assign(count, 0);
    const auto target = audioSpectrum_ ? audioSpectrum_->spectrum(wanted) : std::span<const double>();
    const double deltaMs = elapsedMs();
    const double attackAlpha = smoothingAlpha(deltaMs, wanted.fftAttackMs, DisplayAttackExtraSmoothingMs);
    const double decayAlpha = smoothingAlpha(deltaMs, wanted.fftDecayMs, DisplayDecayExtraSmoothingMs);
    double sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double goal = i < target.size() ? std::clamp(target[i], 0.0, 1.0) : 0;
        double difference = goal - spectrum_[i];
        if (std::fabs(difference) < DisplayDeadband)
            difference = 0;
        const double alpha = difference < 0 ? decayAlpha : attackAlpha;
        spectrum_[i] = std::clamp(spectrum_[i] + difference * alpha, 0.0, 1.0);
        sum += spectrum_[i];
    }
    const double mean = sum / static_cast<double>(count);
    publish(mean, formatFixed(mean, 6), false, 0, 1);
}

/// Monotonic, so that setting the wall clock does not make the bars jump.
double AudioLevelMeasure::elapsedMs() {
    const double now = clock_.uptimeSeconds();
    const double elapsed = lastSpectrumUpdateTime_
        ? std::clamp((now - *lastSpectrumUpdateTime_) * 1000, 1.0, LongestUpdateMs)
        : FirstUpdateMs;
    lastSpectrumUpdateTime_ = now;
    return elapsed;
}

void AudioLevelMeasure::updateBand() {
    auto& root = parentMeasure_ ? *parentMeasure_ : *this;
    // A child that comes before its root in the first cycle primes it.
    if (root.spectrum_.empty())
        root.updateSpectrumRoot();
    const double level = bandIndex_ < root.spectrum_.size() ? root.spectrum_[bandIndex_] : 0;
    if (level != value().numericValue)
        publish(level, formatFixed(level, 6), false, 0, 1);
}

void AudioLevelMeasure::updateDeviceList() {
    publish(0, AudioLevelSpectrumSource::DeviceListText, true, 0, 0);
}

} // namespace Ostrel
