#include "Support/CommandLine.h"
#include "Support/TemporaryFolder.h"
#include "Support/WavBytes.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <sstream>

namespace Ostrel {
namespace {

using JSON = nlohmann::ordered_json;

struct AudioScenario : testing::Test {
    /// The lines of a trace of four bands that follow without smoothing over time.
    std::vector<JSON> trace(const std::string& scenario, int expectedStatus = 0) {
        const auto skin = folder.write("skin.ini", R"([Rainmeter]
Update=50
[Root]
Measure=Plugin
Plugin=AudioLevel
Bands=4
FFTSize=1024
FFTAttack=0
FFTDecay=0
[Low]
Measure=Plugin
Plugin=AudioLevel
Type=Band
Parent=Root
BandIdx=2
[High]
Measure=Plugin
Plugin=AudioLevel
Type=Band
Parent=Root
BandIdx=4
)");
        const auto result = runOstrel({"trace", skin, "-"}, scenario);
        EXPECT_EQ(result.status, expectedStatus) << result.messages;
        messages = result.messages;
        std::vector<JSON> lines;
        std::istringstream output(result.output);
        for (std::string line; std::getline(output, line);)
            lines.push_back(JSON::parse(line));
        return lines;
    }
    /// A WAV file of tones one after another.
    std::string toneFile(const std::string& name, std::uint32_t rate, const std::vector<double>& tones, int frames) {
        std::vector<int> samples;
        for (const double hertz : tones) {
            for (int i = 0; i < frames; ++i)
                samples.push_back(static_cast<int>(12000 * std::sin(2 * std::numbers::pi * hertz * i / rate)));
        }
        return folder.write(name, wavFile({.sampleRateHz = rate}, integerSamples(samples)));
    }
    static double number(const JSON& line, const char* measure) {
        return line["measures"][measure]["number"].get<double>();
    }

    TemporaryFolder folder;
    std::string messages;
};

TEST_F(AudioScenario, feedsEachTickItsInterval) {
    const auto file = toneFile("a.wav", 48000, {200, 4000}, 48000);
    const auto lines = trace("tick 3\naudio " + file + "\ntick 20\ntick 20\ntick 100\n");
    EXPECT_EQ(number(lines[1], "Root"), 0) << "nothing is delivered before the first file";
    EXPECT_EQ(number(lines[2], "Root"), 0) << "nor by the line itself";
    EXPECT_GT(number(lines[3], "Low"), 0.3);
    EXPECT_LT(number(lines[3], "High"), 0.05);
    EXPECT_GT(number(lines[4], "High"), 0.3) << "20 ticks of 50 ms later the second has passed";
    EXPECT_LT(number(lines[4], "Low"), 0.05);
    EXPECT_NEAR(number(lines[5], "High"), number(lines[4], "High"), 0.01) << "after the end the last power stays";

    const auto waited = trace("audio " + file + "\nwait 1.5\ntick 20\n");
    EXPECT_GT(number(waited[3], "Low"), 0.3) << "a wait feeds nothing";
}

/// Numbers of an independent model of the arithmetic.
TEST_F(AudioScenario, keepsTheNumbersOfTheArithmetic) {
    const auto file = toneFile("a.wav", 44100, {200, 4000, 440}, 2205);
    const auto lines = trace("audio " + file + "\ntick\ntick\ntick\n");
    const struct {
        double root, low, high;
    } rows[] = {{0.277713271, 0.585508080, 0.000000000}, {0.207411422, 0.128679970, 0.585508080},
        {0.188286044, 0.028280625, 0.128679970}};
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_NEAR(number(lines[i + 2], "Root"), rows[i].root, 1e-6) << i;
        EXPECT_NEAR(number(lines[i + 2], "Low"), rows[i].low, 1e-6) << i;
        EXPECT_NEAR(number(lines[i + 2], "High"), rows[i].high, 1e-6) << i;
    }
}

TEST_F(AudioScenario, livesThroughFilesThatLie) {
    const auto infinity = std::numeric_limits<float>::infinity();
    const WavHeader floats{.code = 3, .sampleRateHz = 4294967295, .bits = 32};
    const std::vector<float> broken{infinity, -infinity, std::numeric_limits<float>::quiet_NaN(), 1e38F};
    const auto path = folder.write("a.wav", wavFile(floats, floatSamples(broken)));
    for (const auto& line : trace("audio " + path + "\ntick 3\n"))
        EXPECT_EQ(number(line, "Root"), 0);
    const auto slow = folder.write("b.wav", wavFile({.sampleRateHz = 0}, std::string(1000, 'x')));
    EXPECT_EQ(number(trace("audio " + slow + "\ntick 3\n")[2], "Root"), 0);

    const auto text = folder.write("c.wav", "RIFF of the sort that guitars play");
    const auto good = toneFile("d.wav", 44100, {440}, 44100);
    const auto lines = trace("audio " + text + "\ntick\naudio " + good + "\naudio none.wav\ntick\n", 1);
    EXPECT_EQ(lines.size(), 7U) << "the rest of the scenario still runs";
    EXPECT_EQ(number(lines[5], "Root"), 0);
    EXPECT_EQ(messages, "ostrel: cannot read " + text + "\nostrel: cannot read none.wav\n");
    trace("audio\n", 2);
}

} // namespace
} // namespace Ostrel
