#include "OstrelEngine/Sound/SpectrumAnalyzer.h"

#include "OstrelEngine/Sound/Tones.h"
#include "Support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <limits>
#include <numeric>

namespace Ostrel {

namespace {

/// The smoothed-free power of one bin by the definition of the transform, in 64 bits.
double powerByDefinition(const std::vector<float>& samples, std::size_t bin) {
    const auto size = samples.size();
    const auto transformed = [&](std::size_t k) {
        std::complex<double> sum = 0;
        for (std::size_t n = 0; n < size; ++n) {
            const double angle = 2 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(size);
            const double window = 0.8165 * (1 - std::cos(angle));
            sum += std::polar(static_cast<double>(samples[n]) * window, -angle * static_cast<double>(k));
        }
        return 4 * std::norm(sum);
    };
    const double packed = bin == 0 ? transformed(size / 2) : 0;
    return (transformed(bin) + packed) / std::sqrt(static_cast<double>(size));
}

std::size_t loudestBin(const SpectrumAnalyzer& analyzer) {
    const auto power = analyzer.latestMagnitudes();
    return static_cast<std::size_t>(std::max_element(power.begin(), power.end()) - power.begin());
}

double sum(const SpectrumAnalyzer& analyzer) {
    const auto power = analyzer.latestMagnitudes();
    return std::accumulate(power.begin(), power.end(), 0.0);
}

} // namespace

TEST(SpectrumAnalyzer, takesTheNearestPowerOfTwo) {
    const std::pair<std::int64_t, int> cases[] = {{100, 128}, {96, 64}, {97, 128}, {3000, 2048}, {3072, 2048},
        {3073, 4096}, {20000, 16384}, {10, 64}, {-1, 64}, {64, 64}, {2048, 2048},
        {std::numeric_limits<std::int64_t>::max(), 16384}, {std::numeric_limits<std::int64_t>::min(), 64}};
    for (const auto& [value, size] : cases)
        EXPECT_EQ(SpectrumAnalyzer::sanitizeFFTSize(value), size) << value;
}

TEST(SpectrumAnalyzer, derivesTheEnvelopeFromTransformsPerSecond) {
    EXPECT_NEAR(SpectrumAnalyzer::envelopeCoefficient(300, 44100.0 / 1024), 0.85659, 5e-6);
    EXPECT_FLOAT_EQ(SpectrumAnalyzer::envelopeCoefficient(1000, 1), std::exp(-2.0F));
    EXPECT_EQ(SpectrumAnalyzer::envelopeCoefficient(0, 43), 0);
    EXPECT_EQ(SpectrumAnalyzer::envelopeCoefficient(300, 0), 0);
    EXPECT_EQ(SpectrumAnalyzer::envelopeCoefficient(300, std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(SpectrumAnalyzer, holdsTheScaleAndPackingOfTheTransform) {
    for (const int size : {64, 256}) {
        SpectrumAnalyzer analyzer;
        analyzer.configureFFT(size, 0, 0, 0);
        auto samples = tone(1234, 8000, static_cast<std::size_t>(size), 0.7);
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] += 0.25F + (i % 2 == 0 ? 0.125F : -0.125F); // something at DC and at Nyquist
        analyzer.ingestSamples(samples, 8000);
        ASSERT_EQ(analyzer.transformCount(), 1U);
        for (std::size_t bin = 0; bin < samples.size() / 2; ++bin) {
            const double expected = powerByDefinition(samples, bin);
            EXPECT_NEAR(analyzer.latestMagnitudes()[bin], expected, expected * 1e-4 + 1e-6) << size << " bin " << bin;
        }
    }
}

TEST(SpectrumAnalyzer, lightsTheBinOfATone) {
    for (const double hertz : {100.0, 440.0, 1000.0, 5000.0, 15000.0}) {
        SpectrumAnalyzer analyzer;
        analyzer.ingestSamples(tone(hertz, 44100, 44100), 44100);
        EXPECT_NEAR(static_cast<double>(loudestBin(analyzer)) * 44100 / 2048, hertz, 44100.0 / 2048 / 2 + 0.01);
    }
}

TEST(SpectrumAnalyzer, transformsOnceAHop) {
    struct Case {
        std::int64_t size, overlap;
        std::size_t samples;
        std::uint64_t transforms;
    };
    for (const auto& [size, overlap, count, transforms] :
        {Case{2048, 1024, 1023, 0}, Case{2048, 1024, 1024, 1}, Case{2048, 1024, 44100, 43}, Case{64, 0, 6400, 100},
            Case{64, -7, 6400, 100}, Case{64, 64, 100, 100}, Case{64, 1000, 100, 100}}) {
        for (const std::size_t piece : {std::size_t{1}, std::size_t{777}, count}) {
            SpectrumAnalyzer analyzer;
            analyzer.configureFFT(size, overlap, 300, 300);
            const auto samples = tone(1000, 44100, count);
            for (std::size_t at = 0; at < count; at += piece)
                analyzer.ingestSamples(std::span(samples).subspan(at, std::min(piece, count - at)), 44100);
            EXPECT_EQ(analyzer.transformCount(), transforms) << size << " " << overlap << " by " << piece;
        }
    }
}

TEST(SpectrumAnalyzer, risesAndFallsByItsCoefficients) {
    SpectrumAnalyzer analyzer;
    analyzer.configureFFT(256, 0, 100, 400);
    const auto loud = tone(1000, 8000, 256);
    const std::vector<float> silence(256);
    const auto attack = SpectrumAnalyzer::envelopeCoefficient(100, 8000.0 / 256);
    const auto decay = SpectrumAnalyzer::envelopeCoefficient(400, 8000.0 / 256);
    const double full = powerByDefinition(loud, 32);
    analyzer.ingestSamples(loud, 8000);
    EXPECT_NEAR(analyzer.latestMagnitudes()[32], full * (1 - attack), full * 1e-4);
    analyzer.ingestSamples(silence, 8000);
    EXPECT_NEAR(analyzer.latestMagnitudes()[32], full * (1 - attack) * decay, full * 1e-4);
    for (int i = 0; i < 4000; ++i)
        analyzer.ingestSamples(silence, 8000);
    EXPECT_EQ(sum(analyzer), 0) << "a fade ends";
}

TEST(SpectrumAnalyzer, forgetsOnlyWhenTheSizeChanges) {
    SpectrumAnalyzer analyzer;
    analyzer.ingestSamples(tone(1000, 44100, 44100), 44100);
    const double before = sum(analyzer);
    analyzer.configureFFT(2048, 512, 0, 10);
    EXPECT_EQ(sum(analyzer), before);
    analyzer.ingestSamples(std::vector<float>(1536), 44100);
    EXPECT_EQ(analyzer.transformCount(), 44U) << "the hop of the new overlap, the old sound still in the ring";
    EXPECT_GT(sum(analyzer), 0);
    analyzer.configureFFT(4096, 512, 0, 10);
    EXPECT_EQ(analyzer.latestMagnitudes().size(), 2048U);
    EXPECT_EQ(sum(analyzer), 0);
}

TEST(SpectrumAnalyzer, ignoresARateThatWobbles) {
    const auto fallAfter = [](double moved) {
        SpectrumAnalyzer analyzer;
        analyzer.configureFFT(64, 0, 0, 1000);
        analyzer.ingestSamples(tone(10, 100, 64), 100);
        const double full = sum(analyzer);
        analyzer.ingestSamples(std::vector<float>(64), moved);
        EXPECT_EQ(analyzer.latestSampleRate(), moved > 0 ? moved : 100);
        return sum(analyzer) / full;
    };
    const double slow = SpectrumAnalyzer::envelopeCoefficient(1000, 100.0 / 64);
    EXPECT_NEAR(fallAfter(100.4), slow, 1e-5);
    EXPECT_NEAR(fallAfter(0), slow, 1e-5);
    EXPECT_NEAR(fallAfter(100.6), SpectrumAnalyzer::envelopeCoefficient(1000, 100.6 / 64), 1e-5);
    EXPECT_GT(std::fabs(SpectrumAnalyzer::envelopeCoefficient(1000, 100.6 / 64) - slow), 1e-3);
}

TEST(SpectrumAnalyzer, recoversFromBrokenSamples) {
    for (const float broken :
        {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), 1e30F}) {
        SpectrumAnalyzer analyzer;
        auto samples = tone(1000, 44100, 4096);
        samples[2000] = broken;
        analyzer.ingestSamples(samples, 44100);
        analyzer.ingestSamples(tone(5000, 44100, 441000), 44100);
        EXPECT_TRUE(std::isfinite(sum(analyzer)));
        EXPECT_EQ(loudestBin(analyzer), 232U) << broken;
    }
}

TEST(SpectrumAnalyzer, allocatesNothingInTheStream) {
    SpectrumAnalyzer analyzer;
    const auto samples = tone(1000, 44100, 44100);
    const auto before = allocationCount();
    analyzer.configureFFT(2048, 1536, 20, 20);
    for (std::size_t at = 0; at < samples.size(); at += 735)
        analyzer.ingestSamples(std::span(samples).subspan(at, 735), at % 2 == 0 ? 44100 : 48000);
    EXPECT_EQ(allocationCount(), before);
    EXPECT_GT(analyzer.transformCount(), 80U);
}

} // namespace Ostrel
