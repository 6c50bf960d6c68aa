#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelPlatform/AudioSpectrum.h"
#include "OstrelPlatform/NetworkProbe.h"
#include "OstrelPlatform/SoundControl.h"
#include "Support/FakeFullHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
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

namespace {

/// Notes what it is asked.
class NotedSound final : public SoundControl {
public:
    State now{true, "Speakers", 40, false};
    Lines asked;

    const State& state() override { return now; }
    void setVolume(double volume) override { asked.push_back("volume " + formatGeneral(volume)); }
    void toggleMute() override { asked.push_back("mute"); }
    void chooseNext(int steps) override { asked.push_back("next " + formatInteger(steps)); }
    void choose(int number) override { asked.push_back("choose " + formatInteger(number)); }
};

/// Answers when the test says so.
class HeldProbe final : public NetworkProbe {
public:
    std::vector<std::function<void(std::optional<double>)>> waiting;

    void ping(const std::string&, double, std::function<void(std::optional<double>)> done) override {
        waiting.push_back(std::move(done));
    }
};

} // namespace

TEST(FullSound, namesTheOutputAndPassesCommandsOn) {
    FakeFullHost skin;
    auto& device = skin.addUpdated("W", "Plugin:Win7AudioPlugin");
    EXPECT_EQ(device.value().stringValue, "ERROR - Getting Default Device");
    NotedSound sound;
    skin.fake.platform.soundControl = &sound;
    device.update();
    EXPECT_EQ(device.value().stringValue, "Speakers");
    EXPECT_EQ(device.value().numericValue, 40);
    sound.now.isMuted = true;
    device.update();
    EXPECT_EQ(device.value().numericValue, -1);
    for (const auto* command : {"SetVolume 250", "changevolume -50", "ToggleMute", "ToggleNext", "TogglePrevious",
             "SetOutputIndex 2", "SetVolume loud", "What"})
        device.executeCommand(command);
    auto& key = skin.add("K", "MediaKey");
    for (const auto* command : {"VolumeUp", "VolumeDown", "VolumeMute", "NextTrack", "VolumeX"})
        key.executeCommand(command);
    EXPECT_EQ(sound.asked,
        (Lines{"volume 100", "volume 0", "mute", "next 1", "next -1", "choose 2", "volume 0", "volume 42", "volume 38",
            "mute"}));
}

TEST(FullPing, asksAtItsRateAndShowsAnswers) {
    FakeFullHost skin;
    HeldProbe probe;
    skin.fake.platform.networkProbe = &probe;
    auto& ping = skin.add("P", "Plugin:PingPlugin.dll",
        {{"DestAddress", "lab.example"}, {"UpdateRate", "3"}, {"TimeoutValue", "999"},
            {"FinishAction", "[!Log done]"}});
    for (int i = 0; i < 7; ++i)
        ping.update();
    EXPECT_EQ(probe.waiting.size(), 1U) << "one question at a time";
    probe.waiting[0](12.5);
    EXPECT_EQ(skin.lines, (Lines{"allow lab.example", "arrived P", "run [!Log done]"}));
    ping.update();
    EXPECT_EQ(ping.value().numericValue, 12.5);
    for (int i = 0; i < 3; ++i)
        ping.update();
    ASSERT_EQ(probe.waiting.size(), 2U);
    probe.waiting[1](std::nullopt);
    ping.update();
    EXPECT_EQ(ping.value().numericValue, 999);
    skin.allowsAll = false;
    skin.addUpdated("N", "Plugin:PingPlugin", {{"DestAddress", "10.0.0.1"}});
    EXPECT_EQ(probe.waiting.size(), 2U);
}

} // namespace Ostrel
