#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/ParentMeasures.h"
#include "OstrelPlatform/AudioSpectrum.h"

#include <optional>
#include <vector>

namespace Ostrel {

/// The machine's sound: loudness, bands, single frequencies. A measure without `Parent` says how the sound is cut up,
/// one with it shows a part of its parent's. Levels follow with the attack and decay of the options, by the real time
/// between two updates. All channels are one.
class FullAudioLevelMeasure final : public FullMeasure {
public:
    FullAudioLevelMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

    void update() override;

private:
    enum class Type { RMS, Peak, FFT, FFTFreq, Band, BandFreq, Format, DeviceStatus, DeviceName, DeviceID, DeviceList };
    /// Follows a level, quickly upward and slowly downward or as the options say.
    struct Envelope {
        double attackMs = 0;
        double decayMs = 0;
        double level = 0;

        void follow(double target, double elapsedMs);
    };

    void readOptions();
    void readSource();
    FullAudioLevelMeasure& source();
    void updateBands();
    double loudness(Type type);
    double frequencyLevel(const FullAudioLevelMeasure& source);

    ParentMeasures<FullAudioLevelMeasure> registration_;
    Type type_ = Type::RMS;
    std::size_t band_ = 0;
    std::size_t bin_ = 0;

    // Of a measure without a parent.
    SpectrumRequest request_;
    bool hasBands_ = false;
    bool listensToInput_ = false;
    double rmsGain_ = 1;
    double peakGain_ = 1;
    Envelope rms_, peak_;
    std::vector<double> bands_;
    std::optional<double> bandsTime_;
    std::optional<double> levelTime_;
};

} // namespace Ostrel
