#include "OstrelEngine/Sound/WavFile.h"

#include "Support/WavBytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <sstream>

namespace Ostrel {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::optional<WavFile> open(const std::string& bytes) {
    return WavFile::open(std::make_unique<std::istringstream>(bytes));
}

std::vector<float> allOf(const std::string& bytes) {
    std::vector<float> all;
    if (auto file = open(bytes)) {
        for (auto some = file->readMono(1000000); !some.empty(); some = file->readMono(1000000))
            all.insert(all.end(), some.begin(), some.end());
        EXPECT_EQ(file->framesLeft(), 0U);
    }
    return all;
}

const std::string Ramp = integerSamples(std::array{0, 32767, -32768, 16384});

} // namespace

TEST(WavFile, readsIntegersAndFloatsOfAnyChannels) {
    EXPECT_THAT(allOf(wavFile({}, Ramp)), ElementsAre(0, 1, -1, 16384.0F / 32767));
    EXPECT_THAT(allOf(wavFile({.channels = 2}, Ramp)), ElementsAre(0.5F, (16384.0F / 32767 - 1) / 2));
    const auto floats = floatSamples(std::array{0.25F, -3.0F, 0.75F});
    EXPECT_THAT(allOf(wavFile({.code = 3, .bits = 32}, floats)), ElementsAre(0.25F, -3, 0.75F));
    EXPECT_THAT(
        allOf(wavFile({.code = 3, .channels = 3, .bits = 32}, floats)), ElementsAre(testing::FloatEq(-2.0F / 3)));
    const std::string guid = littleEndianText(22, 2) + littleEndianText(16, 2) + littleEndianText(4, 4)
        + littleEndianText(1, 2) + std::string(14, 'g');
    EXPECT_EQ(allOf(wavFile(wavChunk("fmt ", wavFormat({.code = 0xFFFE}) + guid) + wavChunk("LIST", "odd")
                        + wavChunk("data", Ramp)))
                  .size(),
        4U);
    EXPECT_EQ(allOf(wavFile({.channels = 2}, integerSamples(std::vector<int>(200000, 7)))).size(), 100000U);
}

TEST(WavFile, readsNoMoreThanIsThere) {
    auto file = open(wavFile({.sampleRateHz = 192000}, Ramp));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->sampleRateHz(), 192000);
    EXPECT_EQ(file->readMono(3).size(), 3U);
    EXPECT_EQ(file->framesLeft(), 1U);
    EXPECT_EQ(file->readMono(3).size(), 1U);
    EXPECT_EQ(file->readMono(3).size(), 0U);

    const std::string endless
        = "RIFF\xFF\xFF\xFF\xFFWAVE" + wavChunk("fmt ", wavFormat({})) + "data\xFF\xFF\xFF\xFF" + Ramp;
    EXPECT_THAT(allOf(endless), ElementsAre(0, 1, -1, 16384.0F / 32767));
    EXPECT_EQ(allOf(endless + "x").size(), 4U) << "half a sample";
    EXPECT_THAT(allOf(wavFile({.channels = 65535}, Ramp)), IsEmpty());
    EXPECT_THAT(allOf(wavFile({}, "")), IsEmpty());
}

TEST(WavFile, refusesWhatItDoesNotUnderstand) {
    for (const WavHeader header : {WavHeader{.channels = 0}, {.bits = 8}, {.bits = 24}, {.bits = 0}, {.bits = 32},
             {.code = 3}, {.code = 3, .bits = 64}, {.code = 2}, {.code = 0xFFFE}, {.code = 85}})
        EXPECT_FALSE(open(wavFile(header, Ramp))) << header.code << " " << header.channels << " " << header.bits;
    const auto whole = wavFile({}, Ramp);
    for (std::size_t size = 0; size < 44; ++size)
        EXPECT_FALSE(open(whole.substr(0, size))) << size << " bytes";
    EXPECT_FALSE(open("RIFX" + whole.substr(4)));
    EXPECT_FALSE(open(wavFile(wavChunk("data", Ramp) + wavChunk("fmt ", wavFormat({})))));
    EXPECT_FALSE(open(wavFile(wavChunk("fmt ", wavFormat({}).substr(0, 14)) + wavChunk("data", Ramp))));
    std::string chunks = wavChunk("fmt ", wavFormat({}));
    for (int i = 0; i < 100000; ++i)
        chunks += wavChunk("junk", "");
    EXPECT_FALSE(open(wavFile(chunks + wavChunk("data", Ramp))));
}

} // namespace Ostrel
