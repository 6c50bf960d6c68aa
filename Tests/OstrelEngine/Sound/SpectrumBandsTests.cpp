#include "OstrelEngine/Sound/SpectrumBands.h"

#include "Support/AllocationCounter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace Ostrel {

using testing::Each;
using testing::IsEmpty;

namespace {

std::vector<double> copy(std::span<const double> levels) {
    return {levels.begin(), levels.end()};
}

} // namespace

TEST(SpectrumBands, placesTheEdgesHalfABandIn) {
    const auto one = SpectrumBands::computeBandFrequencies(1, 100, 400);
    ASSERT_EQ(one.size(), 1U);
    EXPECT_DOUBLE_EQ(one[0], 200);
    const auto four = SpectrumBands::computeBandFrequencies(4, 100, 1600);
    ASSERT_EQ(four.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(four[i], 100 * std::pow(2.0, static_cast<double>(i) + 0.5), 1e-9);
    EXPECT_THAT(SpectrumBands::computeBandFrequencies(0, 20, 16000), IsEmpty());
}

TEST(SpectrumBands, answersNonsenseWithNothingOrSilence) {
    SpectrumBands bands;
    const std::vector<float> power(1024, 1);
    EXPECT_THAT(copy(bands.computeBands(power, 0, 20, 16000, 44100, 35, 2048)), IsEmpty());
    EXPECT_THAT(copy(bands.computeBands(power, -3, 20, 16000, 44100, 35, 2048)), IsEmpty());
    EXPECT_THAT(copy(bands.computeBands({}, 64, 20, 16000, 44100, 35, 2048)), IsEmpty());
    EXPECT_THAT(copy(bands.computeBands(power, 64, 20, 16000, 0, 35, 2048)), IsEmpty());
    EXPECT_THAT(copy(bands.computeBands(power, 64, 20, 16000, 44100, 35, 0)), IsEmpty());
    EXPECT_EQ(copy(bands.computeBands(std::vector<float>(1024), 64, 20, 16000, 44100, 35, 2048)),
        std::vector<double>(64, 0.0));
    EXPECT_EQ(bands.computeBands(power, std::numeric_limits<std::int64_t>::max(), 20, 16000, 44100, 35, 2048).size(),
        static_cast<std::size_t>(SpectrumBands::MaximumBands));
}

TEST(SpectrumBands, splitsABinAtTheEdge) {
    // One bin of power, 100 Hz wide around 1000 Hz, over bands whose edges fall into it. Nothing clips here, so that
    // the mapping can be inverted: what the bands hold together is the bin's width times its power.
    SpectrumBands bands;
    std::vector<float> power(100);
    power[10] = 20;
    const auto levels = copy(bands.computeBands(power, 40, 500, 2000, 20000, 1e9, 200));
    EXPECT_GT(std::count_if(levels.begin(), levels.end(), [](double level) { return level > 0; }), 1);
    const auto held = copy(bands.computeBands(power, 40, 500, 2000, 20000, 100, 200));
    double total = 0;
    for (const double mapped : held) {
        const double decibels = mapped / (1 - mapped * SpectrumBands::MappedBandCompression);
        total += mapped > 0 ? std::pow(10.0, (decibels - 1.0) * 10) : 0;
    }
    EXPECT_NEAR(total, 100 * 20 * 2.0 / 20000, 1e-6);
}

TEST(SpectrumBands, compressesFullPowerAndMapsTheRest) {
    SpectrumBands bands;
    // The widest band that exists: all bins of a full-scale sound.
    const std::vector<float> loud(1024, 1e6F);
    EXPECT_DOUBLE_EQ(bands.computeBands(loud, 1, 20, 16000, 44100, 35, 2048)[0], 1 / 1.55);
    // 1 band from 20 to 16000 ends at 565.7 Hz; bins of equal power fill it evenly.
    const double width = std::sqrt(20.0 * 16000) - 20;
    const std::vector<float> quiet(1024, 0.001F);
    const double decibels = 10.0 / 35 * std::log10(width * 0.001F * 2 / 44100) + 1;
    ASSERT_LT(decibels, 0);
    EXPECT_EQ(bands.computeBands(quiet, 1, 20, 16000, 44100, 35, 2048)[0], 0);
    const std::vector<float> middle(1024, 1);
    const double middleDecibels = 10.0 / 35 * std::log10(width * 2 / 44100) + 1;
    EXPECT_NEAR(bands.computeBands(middle, 1, 20, 16000, 44100, 35, 2048)[0],
        middleDecibels / (middleDecibels * 0.55 + 1), 1e-12);
}

TEST(SpectrumBands, sharesOneNarrowRangeAboveNyquist) {
    SpectrumBands bands;
    const std::vector<float> power(1024, 1e9F);
    const auto levels = copy(bands.computeBands(power, 4, 90000, 95000, 44100, 35, 2048));
    EXPECT_THAT(levels, Each(0.0)) << "the range lies beyond the last bin";
    // Reading 20 Hz to Nyquist, the bands beyond the bins stay 0.
    EXPECT_EQ(bands.computeBands(std::span(power).first(10), 64, 20, 16000, 44100, 35, 2048).back(), 0);
}

TEST(SpectrumBands, replacesCachedEdgesWhenAskedForOthers) {
    SpectrumBands cached;
    std::vector<float> power(1024);
    std::iota(power.begin(), power.end(), 0.0F);
    for (const auto& [count, low, high] : {std::tuple{64, 20.0, 16000.0}, {32, 20.0, 16000.0}, {32, 50.0, 16000.0},
             {32, 50.0, 8000.0}, {64, 20.0, 16000.0}}) {
        SpectrumBands fresh;
        EXPECT_EQ(copy(cached.computeBands(power, count, low, high, 44100, 35, 2048)),
            copy(fresh.computeBands(power, count, low, high, 44100, 35, 2048)));
    }
    const auto before = allocationCount();
    cached.computeBands(power, 64, 20, 16000, 44100, 35, 2048);
    EXPECT_EQ(allocationCount(), before);
}

} // namespace Ostrel
