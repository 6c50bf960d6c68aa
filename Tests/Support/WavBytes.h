#pragma once

#include <bit>
#include <cstdint>
#include <span>
#include <string>

namespace Ostrel {

/// What a WAV header says, true or not.
struct WavHeader {
    std::uint32_t code = 1;
    std::uint32_t channels = 1;
    std::uint32_t sampleRateHz = 44100;
    std::uint32_t bits = 16;
};

inline std::string littleEndianText(std::uint64_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> 8 * i);
    return text;
}

inline std::string wavFormat(const WavHeader& header) {
    return littleEndianText(header.code, 2) + littleEndianText(header.channels, 2)
        + littleEndianText(header.sampleRateHz, 4) + littleEndianText(0, 6) + littleEndianText(header.bits, 2);
}

inline std::string wavChunk(const std::string& name, const std::string& content) {
    return name + littleEndianText(static_cast<std::uint32_t>(content.size()), 4) + content
        + std::string(content.size() % 2, '\0');
}

inline std::string wavFile(const std::string& chunks) {
    return wavChunk("RIFF", "WAVE" + chunks);
}

inline std::string wavFile(const WavHeader& header, const std::string& samples) {
    return wavFile(wavChunk("fmt ", wavFormat(header)) + wavChunk("data", samples));
}

inline std::string integerSamples(std::span<const int> samples) {
    std::string bytes;
    for (const int sample : samples)
        bytes += littleEndianText(static_cast<std::uint32_t>(sample), 2);
    return bytes;
}

inline std::string floatSamples(std::span<const float> samples) {
    std::string bytes;
    for (const float sample : samples)
        bytes += littleEndianText(std::bit_cast<std::uint32_t>(sample), 4);
    return bytes;
}

} // namespace Ostrel
