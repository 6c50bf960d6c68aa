#pragma once

#include "OstrelPlatform/AudioTap.h"

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace Ostrel {

/// The samples of a WAV file, read as they are asked for: 16-bit integers or 32-bit floats, any number of channels.
class WavFile {
public:
    /// Absent when the bytes are none that is understood. What the header promises beyond their end is not there.
    static std::optional<WavFile> open(std::unique_ptr<std::istream> bytes);

    double sampleRateHz() const { return format_.sampleRateHz; }
    std::uint64_t framesLeft() const { return framesLeft_; }
    /// The next frames as the mean of their channels: at most so many, fewer as it suits, none at the end. The view
    /// lives until the next call.
    std::span<const float> readMono(std::uint64_t atMost);

private:
    WavFile(std::unique_ptr<std::istream> bytes, const AudioStreamFormat& format, std::uint64_t frames);
    std::size_t sampleBytes() const { return format_.bitsPerChannel / 8; }
    void separateChannels(std::size_t frames);

    std::unique_ptr<std::istream> bytes_;
    AudioStreamFormat format_;
    std::uint64_t framesLeft_ = 0;
    std::vector<std::byte> interleaved_;
    std::vector<std::byte> planar_;
    std::vector<std::span<const std::byte>> channels_;
    std::vector<float> mono_;
};

} // namespace Ostrel
