#include "OstrelEngine/Measures/AudioLevelMeasure.h"

#include "OstrelEngine/Measures/MeasureTable.h"
#include "Support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Ostrel {

namespace {

struct FakeAudioSpectrum final : AudioSpectrum {
    std::span<const double> spectrum(const SpectrumRequest& request) override {
        requests.push_back(request);
        return levels;
    }
    std::vector<SpectrumRequest> requests;
    std::vector<double> levels;
};

struct AudioLevelMeasureTest : testing::Test {
    AudioLevelMeasureTest() {
        audio.requests.reserve(1000);
        table->fake.platform.audioSpectrum = &audio;
    }
    BaseMeasure& add(std::string name, MeasureTable::Pairs options) {
        auto& measure = table->add(std::move(name), "Plugin", options);
        measure.resolveReferences();
        return measure;
    }
    BaseMeasure& addRoot(std::string name, std::string bands) {
        return add(std::move(name), {{"Plugin", "AudioLevel"}, {"Bands", std::move(bands)}});
    }
    BaseMeasure& addBand(std::string name, std::string parent, std::string index) {
        return add(std::move(name),
            {{"Plugin", "AudioLevel.dll"}, {"Type", " band\t"}, {"Parent", std::move(parent)},
                {"BandIdx", std::move(index)}});
    }
    void tick(BaseMeasure& measure, double seconds) {
        table->fake.clock.uptime += seconds;
        measure.update();
    }

    FakeAudioSpectrum audio;
    std::shared_ptr<MeasureTable> table = MeasureTable::create();
};

double rise(double ms, double tau) {
    return 1 - std::exp(-ms / tau);
}

} // namespace

TEST_F(AudioLevelMeasureTest, asksForWhatItsOptionsSay) {
    const struct {
        std::pair<std::string_view, std::string> option;
        SpectrumRequest request;
    } rows[] = {
        {{"Bands", ""}, {}},
        {{"Bands", "2*16"}, {.bands = 32}},
        {{"Bands", " 9.5 "}, {.bands = 10}},
        {{"Bands", "-4"}, {.bands = 1}},
        {{"Bands", "many"}, {}},
        {{"Bands", "inf"}, {}},
        {{"Bands", "1e12"}, {.bands = 65536}},
        {{"FreqMin", "0"}, {.minFrequency = 1}},
        {{"FreqMin", "20000"}, {.minFrequency = 20000, .maxFrequency = 20001}},
        {{"FreqMax", "12.5"}, {.maxFrequency = 21}},
        {{"Sensitivity", "0.5"}, {.sensitivity = 1}},
        {{"Sensitivity", "(50 / 4)"}, {.sensitivity = 12.5}},
        {{"FFTSize", "4096"}, {.fftSize = 4096, .fftOverlap = 2048}},
        {{"FFTSize", "101"}, {.fftSize = 101, .fftOverlap = 50}},
        {{"FFTSize", "1"}, {.fftSize = 64, .fftOverlap = 32}},
        {{"FFTOverlap", "-2"}, {.fftOverlap = 0}},
        {{"FFTAttack", "-1"}, {.fftAttackMs = 0}},
        {{"FFTDecay", "12.5"}, {.fftDecayMs = 13}},
    };
    auto& root = add("Root", {{"Plugin", "audiolevel"}});
    EXPECT_EQ(root.value(), (MeasureValue{0, "", false, 0, 1}));
    for (const auto& [option, request] : rows) {
        add("Row", {{"Plugin", "AudioLevel"}, {option.first, option.second}}).update();
        EXPECT_EQ(audio.requests.back(), request) << option.first << "=" << option.second;
        setAndUpdate(root, option.first, option.second);
        EXPECT_EQ(audio.requests.back(), request) << "live " << option.first << "=" << option.second;
        root.setOption(option.first, "");
    }
}

TEST_F(AudioLevelMeasureTest, risesAndFallsByTheTimeThatPassed) {
    auto& root = addRoot("Root", "2");
    auto& first = addBand("First", "ROOT", "1");
    auto& second = addBand("Second", "root", "2");
    const auto expect = [&](double a, double b, const char* why) {
        first.update();
        second.update();
        EXPECT_NEAR(first.value().numericValue, a, 1e-12) << why;
        EXPECT_NEAR(second.value().numericValue, b, 1e-12) << why;
        EXPECT_NEAR(root.value().numericValue, (a + b) / 2, 1e-12) << why;
    };
    audio.levels = {0.6, 0.3};
    root.update();
    double a = 0.6 * rise(10, 321);
    double b = 0.3 * rise(10, 321);
    expect(a, b, "the first step is 10 ms");
    EXPECT_EQ(root.value().stringValue.size(), 8U);
    EXPECT_EQ(first.value().stringValue.substr(0, 4), "0.01");
    tick(root, 0.016);
    expect(a += (0.6 - a) * rise(16, 321), b += (0.3 - b) * rise(16, 321), "the time between two updates");
    tick(root, 60);
    expect(a += (0.6 - a) * rise(250, 321), b += (0.3 - b) * rise(250, 321), "a pause counts as 250 ms");
    audio.levels = {0};
    tick(root, 0);
    expect(a -= a * rise(1, 333), b -= b * rise(1, 333), "no time counts as 1 ms; a missing band falls");
}

TEST_F(AudioLevelMeasureTest, standsStillWithinTheDeadband) {
    auto& root = add("Root", {{"Plugin", "AudioLevel"}, {"Bands", "1"}, {"FFTAttack", "0"}, {"FFTDecay", "0"}});
    audio.levels = {0.002};
    root.update();
    EXPECT_EQ(root.value().numericValue, 0);
    audio.levels = {0.00225};
    root.update();
    EXPECT_GT(root.value().numericValue, 0);
    audio.levels = {7};
    for (int i = 0; i < 100; ++i)
        tick(root, 1);
    EXPECT_NEAR(root.value().numericValue, 1, AudioLevelMeasure::DisplayDeadband);
    EXPECT_LE(root.value().numericValue, 1);
}

TEST_F(AudioLevelMeasureTest, picksTheBandByItsNumber) {
    audio.levels = {0.1, 0.2, 0.3};
    auto& root = addRoot("Root", "3");
    root.update();
    const double alpha = rise(10, 321);
    const struct {
        std::string index;
        double level;
    } rows[] = {{"0", 0.1}, {"-3", 0.1}, {"abc", 0.1}, {"2.0", 0.1}, {"", 0.1}, {"2", 0.2}, {"3", 0.3}, {"4", 0},
        {"9223372036854775807", 0}};
    for (const auto& [index, level] : rows) {
        auto& band = addBand("Band", "Root", index);
        const auto revision = band.valueRevision();
        band.update();
        EXPECT_NEAR(band.value().numericValue, level * alpha, 1e-12) << index;
        EXPECT_EQ(band.value().stringValue.empty(), level == 0) << "nothing is published without a change";
        EXPECT_EQ(band.valueRevision() == revision, level == 0);
    }
    EXPECT_EQ(audio.requests.size(), 1U) << "a child does not drive its root";
}

TEST_F(AudioLevelMeasureTest, primesARootThatHasNotRun) {
    audio.levels = {0.5, 0.5};
    auto& root = addRoot("Root", "2");
    auto& band = addBand("Band", "Root", "1");
    band.update();
    EXPECT_GT(band.value().numericValue, 0);
    EXPECT_GT(root.value().numericValue, 0);
    band.update();
    EXPECT_EQ(audio.requests.size(), 1U);
}

TEST_F(AudioLevelMeasureTest, freezesAChildWithoutAParent) {
    audio.levels = std::vector<double>(64, 0.5);
    addRoot("Stub", "2").update();
    table->add("Calc", "Calc", {});
    for (const std::string parent : {"Missing", "", "Calc"}) {
        auto& orphan = addBand("Orphan", parent, "64");
        orphan.update();
        const double primed = orphan.value().numericValue;
        EXPECT_NEAR(primed, 0.5 * rise(10, 321), 1e-12) << parent;
        tick(orphan, 1);
        EXPECT_EQ(orphan.value().numericValue, primed) << parent;
    }
}

TEST_F(AudioLevelMeasureTest, namesTheOneDevice) {
    auto& list = add("List", {{"Plugin", "AudioLevel"}, {"Type", "DeviceList"}});
    list.update();
    EXPECT_EQ(list.value(), (MeasureValue{0, "0:System Output", true, 0, 0}));
    auto& device = add("Device", {{"Plugin", "Win7AudioPlugin.dll"}, {"Substitute", R"("Default":"The")"}});
    EXPECT_EQ(device.value().stringValue, "The Output") << "there before the first update";
    EXPECT_FALSE(device.executeCommand("ToggleMute"));
    EXPECT_EQ(device.value().maxValue, 0);
    EXPECT_TRUE(device.value().preferStringValue);
}

TEST_F(AudioLevelMeasureTest, staysSilentWithoutASoundSystem) {
    table->fake.platform.audioSpectrum = nullptr;
    auto& root = addRoot("Root", "8");
    root.update();
    EXPECT_EQ(root.value().numericValue, 0);
    EXPECT_EQ(root.value().stringValue, "0.000000");
}

TEST_F(AudioLevelMeasureTest, allocatesNothingOnATick) {
    audio.levels = std::vector<double>(64, 0.5);
    auto& root = addRoot("Root", "64");
    auto& band = addBand("Band", "Root", "7");
    root.update();
    band.update();
    const auto before = allocationCount();
    for (int i = 0; i < 50; ++i) {
        tick(root, 0.016);
        band.update();
    }
    EXPECT_EQ(allocationCount(), before);
}

} // namespace Ostrel
