#pragma once

#include "OstrelEngine/Sound/SpectrumBands.h"
#include "OstrelPlatform/AudioSpectrum.h"
#include "OstrelPlatform/Log.h"

#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace Ostrel {

class AudioCapture;
class AudioSystem;
class Clock;
class MainQueue;
class SpectrumAnalyzer;

/// The machine's sound as bands: capture and analysis on the sound system's queue, the bands on the main thread. A
/// program has one. Nothing is opened, loaded or listened to before the first call of `spectrum`; then it goes on to
/// the end.
class AudioLevelSpectrumSource final : public AudioSpectrum {
public:
    static constexpr std::string_view DeviceListText = "0:System Output";

    struct Environment {
        /// Called once, never null.
        std::function<std::unique_ptr<AudioSystem>()> openSystem;
        const Clock& clock;
        MainQueue& mainQueue;
        LogLine log;
    };

    /// What the environment names outlives the source.
    explicit AudioLevelSpectrumSource(Environment environment);
    ~AudioLevelSpectrumSource() override;

    std::span<const double> spectrum(const SpectrumRequest& request) override;
    SoundLevel level() override;
    /// Mono. On the queue at once, from elsewhere posted.
    void ingestSamples(std::span<const float> samples, double sampleRateHz);
    /// Opened when it is not yet. Main thread.
    AudioSystem& system();

private:
    Environment environment_;
    // Members are destroyed in reverse order: the system ends its queue before the objects that run on it.
    std::unique_ptr<SpectrumAnalyzer> analyzer_;
    std::shared_ptr<AudioCapture> capture_;
    std::unique_ptr<AudioSystem> system_;
    SpectrumBands bands_;
    std::vector<float> magnitudes_;
};

} // namespace Ostrel
