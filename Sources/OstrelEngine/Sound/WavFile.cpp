#include "OstrelEngine/Sound/WavFile.h"

#include "OstrelEngine/Sound/AudioMixer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace Ostrel {

namespace {

constexpr std::uint16_t IntegerSamples = 1;
constexpr std::uint16_t FloatSamples = 3;
/// The code of the samples stands further behind.
constexpr std::uint16_t Extensible = 0xFFFE;
constexpr std::size_t ShortFormatBytes = 16;
constexpr std::size_t LongFormatBytes = 40;
constexpr std::size_t ExtensibleCodeOffset = 24;
/// A file of nothing but small chunks is no sound.
constexpr int MaximumChunks = 1000;
constexpr std::size_t BlockBytes = 65536;

std::uint32_t littleEndian(const char* bytes, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = count; i > 0; --i)
        value = value << 8 | static_cast<unsigned char>(bytes[i - 1]);
    return value;
}

struct Chunk {
    std::array<char, 4> name{};
    std::uint32_t size = 0;

    bool is(std::string_view wanted) const { return std::string_view(name.data(), name.size()) == wanted; }
};

std::optional<Chunk> readChunk(std::istream& file) {
    std::array<char, 8> bytes{};
    if (!file.read(bytes.data(), bytes.size()))
        return std::nullopt;
    Chunk chunk;
    std::copy_n(bytes.begin(), 4, chunk.name.begin());
    chunk.size = littleEndian(bytes.data() + 4, 4);
    return chunk;
}

std::optional<AudioStreamFormat> readFormat(std::istream& file, std::uint32_t size) {
    std::array<char, LongFormatBytes> bytes{};
    const auto count = std::min<std::size_t>(size, bytes.size());
    if (count < ShortFormatBytes || !file.read(bytes.data(), static_cast<std::streamsize>(count)))
        return std::nullopt;
    auto code = littleEndian(bytes.data(), 2);
    if (code == Extensible && count == LongFormatBytes)
        code = littleEndian(bytes.data() + ExtensibleCodeOffset, 2);
    AudioStreamFormat format;
    format.channels = littleEndian(bytes.data() + 2, 2);
    format.sampleRateHz = littleEndian(bytes.data() + 4, 4);
    format.bitsPerChannel = littleEndian(bytes.data() + 14, 2);
    format.isFloat = code == FloatSamples;
    const bool isUnderstood = (code == IntegerSamples && format.bitsPerChannel == 16)
        || (code == FloatSamples && format.bitsPerChannel == 32);
    return isUnderstood && format.channels > 0 ? std::optional(format) : std::nullopt;
}

} // namespace

std::optional<WavFile> WavFile::open(std::unique_ptr<std::istream> bytes) {
    auto& file = bytes->seekg(0, std::ios::end);
    const auto end = static_cast<std::int64_t>(file.tellg());
    file.seekg(0);
    const auto head = readChunk(file);
    std::array<char, 4> kind{};
    if (!head || !head->is("RIFF") || !file.read(kind.data(), kind.size())
        || std::string_view(kind.data(), kind.size()) != "WAVE")
        return std::nullopt;
    std::optional<AudioStreamFormat> format;
    for (int i = 0; i < MaximumChunks; ++i) {
        const auto chunk = readChunk(file);
        if (!chunk)
            return std::nullopt;
        const auto begin = static_cast<std::int64_t>(file.tellg());
        if (chunk->is("data")) {
            if (!format)
                return std::nullopt;
            const auto size = std::min<std::int64_t>(chunk->size, end - begin);
            const auto frameBytes = format->channels * format->bitsPerChannel / 8;
            return WavFile(std::move(bytes), *format, static_cast<std::uint64_t>(size) / frameBytes);
        }
        if (chunk->is("fmt ") && !(format = readFormat(file, chunk->size)))
            return std::nullopt;
        file.seekg(begin + chunk->size + chunk->size % 2);
    }
    return std::nullopt;
}

WavFile::WavFile(std::unique_ptr<std::istream> bytes, const AudioStreamFormat& format, std::uint64_t frames)
    : bytes_(std::move(bytes))
    , format_(format)
    , framesLeft_(frames) { }

std::span<const float> WavFile::readMono(std::uint64_t atMost) {
    const std::size_t frameBytes = format_.channels * sampleBytes();
    const auto wanted
        = std::min({atMost, framesLeft_, std::uint64_t{std::max<std::size_t>(1, BlockBytes / frameBytes)}});
    interleaved_.resize(static_cast<std::size_t>(wanted) * frameBytes);
    bytes_->read(reinterpret_cast<char*>(interleaved_.data()), static_cast<std::streamsize>(interleaved_.size()));
    const auto frames = static_cast<std::size_t>(bytes_->gcount()) / frameBytes;
    framesLeft_ = frames < wanted ? 0 : framesLeft_ - wanted;
    separateChannels(frames);
    if (!AudioMixer::mixToMono(format_, channels_, mono_))
        return {};
    return mono_;
}

void WavFile::separateChannels(std::size_t frames) {
    planar_.resize(frames * format_.channels * sampleBytes());
    channels_.clear();
    std::byte* to = planar_.data();
    for (std::size_t channel = 0; channel < format_.channels; ++channel) {
        channels_.emplace_back(to, frames * sampleBytes());
        for (std::size_t frame = 0; frame < frames; ++frame, to += sampleBytes())
            std::memcpy(to, interleaved_.data() + (frame * format_.channels + channel) * sampleBytes(), sampleBytes());
    }
}

} // namespace Ostrel
