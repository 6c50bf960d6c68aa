#include "OstrelEngine/Sound/AudioMixer.h"

#include <algorithm>
#include <cstring>

namespace Ostrel::AudioMixer {

namespace {

float sampleValue(float sample) {
    return sample;
}

float sampleValue(std::int16_t sample) {
    return normalizeIntegerSample(sample, 16);
}

float sampleValue(std::int32_t sample) {
    return normalizeIntegerSample(sample, 32);
}

template <typename Sample> bool mix(AudioBufferList channels, std::vector<float>& mono) {
    std::size_t frames = channels.front().size() / sizeof(Sample);
    for (const auto& channel : channels)
        frames = std::min(frames, channel.size() / sizeof(Sample));
    if (frames == 0)
        return false;
    mono.assign(frames, 0);
    for (const auto& channel : channels) {
        for (std::size_t i = 0; i < frames; ++i) {
            Sample sample;
            std::memcpy(&sample, channel.data() + i * sizeof(Sample), sizeof(Sample));
            mono[i] += sampleValue(sample);
        }
    }
    const float share = 1 / static_cast<float>(channels.size());
    for (float& sample : mono)
        sample *= share;
    return true;
}

} // namespace

float normalizeIntegerSample(std::int64_t value, int bitsPerChannel) {
    const auto fullScale = std::max<std::int64_t>(1, (std::int64_t{1} << (bitsPerChannel - 1)) - 1);
    return static_cast<float>(std::clamp(value, -fullScale, fullScale)) / static_cast<float>(fullScale);
}

bool hasSampleData(AudioBufferList buffers) {
    return std::any_of(buffers.begin(), buffers.end(), [](const auto& buffer) { return !buffer.empty(); });
}

bool mixToMono(const AudioStreamFormat& format, AudioBufferList buffers, std::vector<float>& mono) {
    if (format.formatID != AudioStreamFormat::LinearPCM || format.channels == 0 || buffers.size() < format.channels)
        return false;
    const auto channels = buffers.first(format.channels);
    if (format.isFloat)
        return format.bitsPerChannel == 32 && mix<float>(channels, mono);
    if (format.bitsPerChannel == 16)
        return mix<std::int16_t>(channels, mono);
    return format.bitsPerChannel == 32 && mix<std::int32_t>(channels, mono);
}

} // namespace Ostrel::AudioMixer
