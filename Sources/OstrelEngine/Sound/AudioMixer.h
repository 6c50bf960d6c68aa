#pragma once

#include "OstrelPlatform/AudioTap.h"

#include <cstdint>
#include <vector>

namespace Ostrel::AudioMixer {

/// -1 to 1, the lowest integer held to -1.
float normalizeIntegerSample(std::int64_t value, int bitsPerChannel);

bool hasSampleData(AudioBufferList buffers);

/// Replaces `mono` by the mean of all channels. False, and `mono` is left alone, when the buffers hold no frame or are
/// not what the format says: linear PCM of 32-bit floats or 16- or 32-bit integers.
bool mixToMono(const AudioStreamFormat& format, AudioBufferList buffers, std::vector<float>& mono);

} // namespace Ostrel::AudioMixer
