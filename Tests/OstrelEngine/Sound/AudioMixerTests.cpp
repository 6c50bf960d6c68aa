#include "OstrelEngine/Sound/AudioMixer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace Ostrel {

using testing::ElementsAre;
using testing::FloatEq;

namespace {

template <typename Sample>
std::vector<float> mixed(const AudioStreamFormat& format, const std::vector<std::vector<Sample>>& channels) {
    std::vector<std::span<const std::byte>> buffers;
    for (const auto& channel : channels)
        buffers.push_back(std::as_bytes(std::span(channel)));
    std::vector<float> mono{-9};
    return AudioMixer::mixToMono(format, buffers, mono) ? mono : std::vector<float>{};
}

} // namespace

TEST(AudioMixer, normalizesIntegersByTheirFullScale) {
    EXPECT_EQ(AudioMixer::normalizeIntegerSample(32767, 16), 1);
    EXPECT_EQ(AudioMixer::normalizeIntegerSample(-32768, 16), -1);
    EXPECT_EQ(AudioMixer::normalizeIntegerSample(0, 16), 0);
    EXPECT_EQ(AudioMixer::normalizeIntegerSample(16384, 16), 16384.0F / 32767.0F);
    EXPECT_EQ(AudioMixer::normalizeIntegerSample(std::numeric_limits<std::int32_t>::min(), 32), -1);
    EXPECT_EQ(AudioMixer::normalizeIntegerSample(5, 1), 1);
}

TEST(AudioMixer, takesTheMeanOfAllChannels) {
    EXPECT_THAT(mixed<float>({.channels = 2}, {{1, 0.5F, -2}, {0, 0.5F, -4}}), ElementsAre(0.5F, 0.5F, -3));
    EXPECT_THAT(mixed<std::int16_t>(
                    {.isFloat = false, .bitsPerChannel = 16, .channels = 3}, {{32767, 0}, {32767, 0}, {-32768, 32767}}),
        ElementsAre(FloatEq(1.0F / 3), FloatEq(1.0F / 3)));
    EXPECT_THAT(
        mixed<std::int32_t>({.isFloat = false, .channels = 1}, {{1 << 30, std::numeric_limits<std::int32_t>::min()}}),
        ElementsAre(FloatEq(0.5F), -1));
    EXPECT_THAT(mixed<float>({.channels = 1}, {{1}, {7}}), ElementsAre(1)) << "a buffer more than channels";
    EXPECT_THAT(mixed<float>({.channels = 2}, {{1, 1, 1}, {1}}), ElementsAre(1)) << "the shortest counts";
}

TEST(AudioMixer, refusesWhatDoesNotFitTheFormat) {
    const std::vector<std::vector<float>> stereo{{1}, {1}};
    EXPECT_THAT(mixed<float>({.channels = 0}, stereo), testing::IsEmpty());
    EXPECT_THAT(mixed<float>({.channels = 3}, stereo), testing::IsEmpty());
    EXPECT_THAT(mixed<float>({.channels = std::numeric_limits<std::uint32_t>::max()}, stereo), testing::IsEmpty());
    EXPECT_THAT(mixed<float>({.bitsPerChannel = 64, .channels = 2}, stereo), testing::IsEmpty());
    EXPECT_THAT(mixed<float>({.isFloat = false, .bitsPerChannel = 24, .channels = 2}, stereo), testing::IsEmpty());
    EXPECT_THAT(mixed<float>({.channels = 2}, {{1}, {}}), testing::IsEmpty());
    EXPECT_THAT(mixed<char>({.channels = 1}, {{'a', 'b', 'c'}}), testing::IsEmpty()) << "less than a sample";
}

} // namespace Ostrel
