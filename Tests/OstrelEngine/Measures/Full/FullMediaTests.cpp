#include "OstrelEngine/Geometry.h"
#include "OstrelPlatform/AudioSpectrum.h"
#include "Support/FakeFullHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <span>

namespace Ostrel {

namespace {

/// Four bands that rise, at a loudness that the test sets.
class SteadySound final : public AudioSpectrum {
public:
    SoundLevel loudness{0.5, 0.8};
    SpectrumRequest asked;
    int questions = 0;

    std::span<const double> spectrum(const SpectrumRequest& request) override {
        asked = request;
        ++questions;
        return std::span<const double>(bands_).first(
            static_cast<std::size_t>(std::min<std::int64_t>(4, request.bands)));
    }
    SoundLevel level() override { return loudness; }

private:
    std::array<double, 4> bands_{0.25, 0.5, 0.75, 1};
};

using Lines = std::vector<std::string>;

} // namespace

TEST(FullAudioLevel, showsBandsOfItsParentFromZeroOn) {
    SteadySound sound;
    FakeFullHost skin;
    skin.fake.platform.audioSpectrum = &sound;
    auto& late = skin.add("Early", "Plugin:AudioLevel", {{"Parent", "Root"}, {"Type", "Band"}, {"BandIdx", "1"}});
    auto& root = skin.add("Root", "Plugin:AudioLevel.dll", {{"FFTSize", "1024"}, {"Bands", "4"}});
    auto& last = skin.add("Last", "Plugin:AudioLevel", {{"Parent", "root"}, {"Type", "Band"}, {"BandIdx", "3"}});
    auto& beyond = skin.add("Beyond", "Plugin:AudioLevel", {{"Parent", "Root"}, {"Type", "Band"}, {"BandIdx", "4"}});
    for (int tick = 0; tick < 100; ++tick) {
        skin.fake.clock.uptime += 0.25;
        for (auto* measure : {&late, &root, &last, &beyond})
            measure->update();
    }
    EXPECT_EQ(sound.questions, 100) << "one question for all children";
    EXPECT_EQ(sound.asked.fftSize, 1024);
    EXPECT_EQ(sound.asked.maxFrequency, 20000);
    EXPECT_NEAR(late.value().numericValue, 0.5, 0.01);
    EXPECT_NEAR(last.value().numericValue, 1, 0.01);
    EXPECT_EQ(beyond.value().numericValue, 0);
    EXPECT_NEAR(root.value().numericValue, 0.5, 0.01) << "a parent shows the loudness";
    EXPECT_FALSE(root.value().preferStringValue);
}

TEST(FullAudioLevel, followsLoudnessWithAttackAndDecay) {
    SteadySound sound;
    FakeFullHost skin;
    skin.fake.platform.audioSpectrum = &sound;
    auto& peak = skin.add(
        "P", "Plugin:AudioLevel", {{"Type", "Peak"}, {"PeakAttack", "0"}, {"PeakDecay", "1000"}, {"PeakGain", "2"}});
    peak.update();
    EXPECT_EQ(peak.value().numericValue, 1);
    sound.loudness = {};
    skin.fake.clock.uptime += 0.1;
    peak.update();
    EXPECT_NEAR(peak.value().numericValue, 0.905, 0.001);
    auto& microphone = skin.addUpdated("I", "Plugin:AudioLevel", {{"Port", "Input"}, {"Type", "DeviceStatus"}});
    EXPECT_EQ(microphone.value().numericValue, 0);
    skin.fake.platform.audioSpectrum = nullptr;
    EXPECT_EQ(
        skin.addUpdated("N", "Plugin:AudioLevel", {{"FFTSize", "-5"}, {"Bands", "99999999"}}).value().numericValue, 0);
}

TEST(FullInputText, promptsWithOptionsBehindACommandAndGoesOn) {
    FakeFullHost skin;
    auto& input = skin.add("Ask", "Plugin:InputText",
        {{"X", "10"}, {"SolidColor", "00000080"}, {"FontSize", "(4*4)"}, {"OnDismissAction", "[!Log bye]"},
            {"Command1", "[!Log first]"},
            {"Command2", R"([!SetVariable X "Y=1 $UserInput$"] Y=40 DefaultValue="a b" InputLimit=3)"},
            {"Command3", "[!Log [Ask]]"}, {"Command5", "[!Log never]"}});
    EXPECT_TRUE(input.executeCommand("ExecuteBatch All"));
    EXPECT_EQ(skin.lines, (Lines{"run [!Log first]", "prompt Ask"}));
    ASSERT_TRUE(skin.prompted);
    EXPECT_EQ(skin.prompted->frame, (Rect{10, 40, 120, 22}));
    EXPECT_EQ(skin.prompted->defaultValue, "a b");
    EXPECT_EQ(skin.prompted->style.fontSize, 16);
    EXPECT_EQ(skin.prompted->style.fillColor, (InputTextStyle::Color{0, 0, 0, 128}));
    skin.lines.clear();
    input.submitInput("\xC3\xA4"
                      "bcd");
    EXPECT_EQ(skin.lines,
        (Lines{"prompt nothing",
            "run [!SetVariable X \"Y=1 \xC3\xA4"
            "bc\"]",
            "run [!Log [Ask]]"}));
    EXPECT_EQ(input.value().stringValue,
        "\xC3\xA4"
        "bc");

    skin.lines.clear();
    input.executeCommand("Name");
    input.executeCommand("ExecuteBatch 2-3");
    input.dismissInput();
    input.submitInput("late");
    EXPECT_EQ(skin.lines, (Lines{"prompt Ask", "prompt nothing", "run [!Log bye]"})) << "what waits behind is dropped";
    skin.lines.clear();
    input.executeCommand("ExecuteBatch 9223372036854775807");
    input.executeCommand("ExecuteBatch 3-2");
    input.executeCommand("no such command");
    EXPECT_EQ(skin.lines, Lines{});
}

} // namespace Ostrel
