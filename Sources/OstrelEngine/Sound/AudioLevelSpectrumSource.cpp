#include "OstrelEngine/Sound/AudioLevelSpectrumSource.h"

#include "OstrelEngine/Sound/AudioCapture.h"
#include "OstrelEngine/Sound/SpectrumAnalyzer.h"
#include "OstrelPlatform/AudioTap.h"
#include "OstrelPlatform/SerialQueue.h"

#include <algorithm>

namespace Ostrel {

AudioLevelSpectrumSource::AudioLevelSpectrumSource(Environment environment)
    : environment_(std::move(environment)) { }

AudioLevelSpectrumSource::~AudioLevelSpectrumSource() = default;

AudioSystem& AudioLevelSpectrumSource::system() {
    if (!system_) {
        analyzer_ = std::make_unique<SpectrumAnalyzer>();
        system_ = environment_.openSystem();
        capture_ = std::make_shared<AudioCapture>(AudioCapture::Environment{
            *system_, *analyzer_, environment_.clock, environment_.mainQueue, environment_.log});
    }
    return *system_;
}

std::span<const double> AudioLevelSpectrumSource::spectrum(const SpectrumRequest& request) {
    auto& queue = system().queue();
    capture_->ensureStarted();
    double sampleRate = 0;
    int fftSize = 0;
    const auto copyLatest = [&] {
        analyzer_->configureFFT(request.fftSize, request.fftOverlap, request.fftAttackMs, request.fftDecayMs);
        const auto latest = analyzer_->latestMagnitudes();
        magnitudes_.assign(latest.begin(), latest.end());
        sampleRate = analyzer_->latestSampleRate();
        fftSize = analyzer_->fftSize();
    };
    queue.sync(std::ref(copyLatest)); // by reference, which is small enough not to be allocated
    return bands_.computeBands(magnitudes_, request.bands, request.minFrequency, request.maxFrequency,
        std::max(sampleRate, 1.0), request.sensitivity, fftSize);
}

SoundLevel AudioLevelSpectrumSource::level() {
    auto& queue = system().queue();
    capture_->ensureStarted();
    SoundLevel level;
    const auto copyLatest = [&] { level = analyzer_->level(); };
    queue.sync(std::ref(copyLatest));
    return level;
}

void AudioLevelSpectrumSource::ingestSamples(std::span<const float> samples, double sampleRateHz) {
    if (samples.empty())
        return;
    auto& queue = system().queue();
    if (queue.isCurrent())
        return analyzer_->ingestSamples(samples, sampleRateHz);
    queue.post([this, copy = std::vector<float>(samples.begin(), samples.end()), sampleRateHz] {
        analyzer_->ingestSamples(copy, sampleRateHz);
    });
}

} // namespace Ostrel
