#include "OstrelEngine/Measures/Full/FullAudioLevelMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/AudioLevelMeasure.h"
#include "OstrelEngine/Sound/AudioLevelSpectrumSource.h"
#include "OstrelEngine/Sound/SpectrumBands.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string_view>

namespace Ostrel {

namespace {

/// In the order of the types.
constexpr std::string_view TypeNames[] = {"RMS", "PEAK", "FFT", "FFTFREQ", "BAND", "BANDFREQ", "FORMAT", "DEVICESTATUS",
    "DEVICENAME", "DEVICEID", "DEVICELIST"};
constexpr double FirstUpdateMs = 10;
constexpr double LongestUpdateMs = 250;
/// What frequencies are told by; the sound itself is analysed at its own rate.
constexpr double NominalRate = 44100;

double share(double elapsedMs, double timeMs) {
    return timeMs > 0 ? 1 - std::exp(-elapsedMs / timeMs) : 1;
}

/// Milliseconds since `before`, which becomes now.
double takeElapsed(std::optional<double>& before, double now) {
    const double elapsed = before ? std::clamp((now - *before) * 1000, 1.0, LongestUpdateMs) : FirstUpdateMs;
    before = now;
    return elapsed;
}

} // namespace

void FullAudioLevelMeasure::Envelope::follow(double target, double elapsedMs) {
    level += (target - level) * share(elapsedMs, target > level ? attackMs : decayMs);
}

FullAudioLevelMeasure::FullAudioLevelMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host)
    , registration_(*this, *this) { }

void FullAudioLevelMeasure::readOptions() {
    const auto type = std::ranges::find(TypeNames, upperCased(trimmed(text("Type"_key, "RMS"))));
    type_ = type == std::end(TypeNames) ? Type::RMS : static_cast<Type>(type - std::begin(TypeNames));
    band_ = static_cast<std::size_t>(std::max(0, integer("BandIdx"_key, 0)));
    bin_ = static_cast<std::size_t>(std::max(0, integer("FFTIdx"_key, 0)));
    readSource();
}

void FullAudioLevelMeasure::readSource() {
    const int size = integer("FFTSize"_key, 0);
    const int bands = integer("Bands"_key, 0);
    hasBands_ = size > 0 && bands > 0;
    request_.bands = std::clamp<std::int64_t>(bands, 1, SpectrumBands::MaximumBands);
    request_.fftSize = std::max(size, 64);
    request_.fftOverlap = std::max(0, integer("FFTOverlap"_key, 0));
    request_.minFrequency = std::max(1.0, number("FreqMin"_key, 20));
    request_.maxFrequency = std::max(request_.minFrequency + 1, number("FreqMax"_key, 20000));
    request_.sensitivity = std::max(1.0, number("Sensitivity"_key, 35));
    request_.fftAttackMs = std::max(0, integer("FFTAttack"_key, 300));
    request_.fftDecayMs = std::max(0, integer("FFTDecay"_key, 300));
    rms_.attackMs = std::max(0.0, number("RMSAttack"_key, 300));
    rms_.decayMs = std::max(0.0, number("RMSDecay"_key, 300));
    peak_.attackMs = std::max(0.0, number("PeakAttack"_key, 50));
    peak_.decayMs = std::max(0.0, number("PeakDecay"_key, 2500));
    rmsGain_ = std::max(0.0, number("RMSGain"_key, 1));
    peakGain_ = std::max(0.0, number("PeakGain"_key, 1));
    const bool wantsInput = equalsIgnoringCase(trimmed(text("Port"_key)), "INPUT");
    if (wantsInput && !listensToInput_)
        host().log(LogLevel::Notice, name(), "Microphones are not listened to");
    listensToInput_ = wantsInput;
}

FullAudioLevelMeasure& FullAudioLevelMeasure::source() {
    const auto parent = text("Parent"_key);
    auto* found = parent.empty() ? nullptr : ParentMeasures<FullAudioLevelMeasure>::find(host().measure(parent));
    if (!found)
        return *this;
    // A child that comes before its parent in the first cycle primes it.
    if (found->optionsDidChange())
        found->readOptions();
    return *found;
}

void FullAudioLevelMeasure::update() {
    if (optionsDidChange())
        readOptions();
    auto& from = source();
    if (&from == this && hasBands_)
        updateBands();
    const bool canListen = host().platform().audioSpectrum && !from.listensToInput_;
    switch (type_) {
    case Type::RMS:
    case Type::Peak:
        return publishNumber(from.loudness(type_), 0, 1);
    case Type::Band:
        return publishNumber(band_ < from.bands_.size() ? from.bands_[band_] : 0, 0, 1);
    case Type::FFT:
        return publishNumber(canListen ? frequencyLevel(from) : 0, 0, 1);
    case Type::FFTFreq:
        return publishNumber(static_cast<double>(bin_) * NominalRate / static_cast<double>(from.request_.fftSize));
    case Type::BandFreq: {
        const auto edges = SpectrumBands::computeBandFrequencies(
            from.request_.bands, from.request_.minFrequency, from.request_.maxFrequency);
        return publishNumber(band_ < edges.size() ? edges[band_] : 0);
    }
    case Type::Format:
        return publishText("PCM 44100 Hz", 0);
    case Type::DeviceStatus:
        return publishNumber(canListen ? 1 : 0, 0, 1);
    case Type::DeviceName:
        return publishText("System Output", 0);
    case Type::DeviceID:
        return publishText("0", 0);
    case Type::DeviceList:
        return publishText(AudioLevelSpectrumSource::DeviceListText, 0);
    }
}

void FullAudioLevelMeasure::updateBands() {
    auto* sound = host().platform().audioSpectrum;
    const auto count = static_cast<std::size_t>(request_.bands);
    bands_.resize(count);
    const auto heard = sound && !listensToInput_ ? sound->spectrum(request_) : std::span<const double>();
    const double elapsedMs = takeElapsed(bandsTime_, host().platform().clock.uptimeSeconds());
    using Base = AudioLevelMeasure;
    const double attack
        = share(elapsedMs, static_cast<double>(request_.fftAttackMs) + Base::DisplayAttackExtraSmoothingMs);
    const double decay
        = share(elapsedMs, static_cast<double>(request_.fftDecayMs) + Base::DisplayDecayExtraSmoothingMs);
    for (std::size_t i = 0; i < count; ++i) {
        const double target = i < heard.size() ? std::clamp(heard[i], 0.0, 1.0) : 0;
        const double difference = target - bands_[i];
        if (std::fabs(difference) >= Base::DisplayDeadband)
            bands_[i] += difference * (difference < 0 ? decay : attack);
    }
}

double FullAudioLevelMeasure::loudness(Type type) {
    const double now = host().platform().clock.uptimeSeconds();
    // Once a moment, however many children ask.
    if (levelTime_ != now) {
        auto* sound = host().platform().audioSpectrum;
        const auto heard = sound && !listensToInput_ ? sound->level() : SoundLevel();
        const double elapsedMs = takeElapsed(levelTime_, now);
        rms_.follow(std::clamp(heard.rms * rmsGain_, 0.0, 1.0), elapsedMs);
        peak_.follow(std::clamp(heard.peak * peakGain_, 0.0, 1.0), elapsedMs);
    }
    return type == Type::RMS ? rms_.level : peak_.level;
}

/// One bin as a band of its own.
double FullAudioLevelMeasure::frequencyLevel(const FullAudioLevelMeasure& source) {
    auto request = source.request_;
    const double width = NominalRate / static_cast<double>(request.fftSize);
    request.bands = 1;
    request.minFrequency = std::max(1.0, (static_cast<double>(bin_) - 0.5) * width);
    request.maxFrequency = request.minFrequency + width;
    const auto heard = host().platform().audioSpectrum->spectrum(request);
    return heard.empty() ? 0 : std::clamp(heard.front(), 0.0, 1.0);
}

} // namespace Ostrel
