#include "OstrelEngine/Sound/Tones.h"
#include "Support/ChildProcess.h"
#include "Support/MissingTool.h"
#include "Support/SoundServer.h"

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>
#include <unistd.h>

namespace Ostrel {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto Deadline = std::chrono::seconds(60);
constexpr auto PollInterval = std::chrono::milliseconds(50);

/// A red, a green and a blue bar for the low, middle and high tones.
constexpr std::string_view Skin = R"([Rainmeter]
Update=17
BackgroundMode=2
SolidColor=0,0,0
[Sound]
Measure=Plugin
Plugin=AudioLevel
Bands=3
FreqMin=50
FreqMax=8000
[Low]
Measure=Plugin
Plugin=AudioLevel
Type=Band
Parent=Sound
BandIdx=1
[Middle]
Measure=Plugin
Plugin=AudioLevel
Type=Band
Parent=Sound
BandIdx=2
[High]
Measure=Plugin
Plugin=AudioLevel
Type=Band
Parent=Sound
BandIdx=3
[Red]
Meter=Bar
MeasureName=Low
X=0
Y=24
W=40
H=100
BarOrientation=Vertical
BarColor=255,0,0
[Green]
Meter=Bar
MeasureName=Middle
X=50
Y=24
W=40
H=100
BarOrientation=Vertical
BarColor=0,255,0
[Blue]
Meter=Bar
MeasureName=High
X=100
Y=24
W=40
H=100
BarOrientation=Vertical
BarColor=0,0,255
)";

/// A display of the test's own.
class RealWidget : public testing::Test {
protected:
    void SetUp() override {
        for (const char* part : {"Xvfb", "xdpyinfo", "import"}) {
            if (!hasProgram(part))
                OSTREL_SKIP_FOR_WANT_OF(part);
        }
        if (const auto missing = SoundServer::missingPart(SoundServer::Kind::PulseAudio))
            OSTREL_SKIP_FOR_WANT_OF(*missing);
        ASSERT_TRUE(server.start());
        processes.emplace_back(
            std::vector<std::string>{"Xvfb", display, "-screen", "0", "640x480x24", "-nolisten", "tcp"});
        ASSERT_TRUE(comesTrue([&] { return ChildProcess({"xdpyinfo", "-display", display}).wait() == 0; }));
    }

    template <typename Condition> static bool comesTrue(const Condition& condition) {
        for (const auto end = Clock::now() + Deadline; Clock::now() < end;) {
            if (condition())
                return true;
            std::this_thread::sleep_for(PollInterval);
        }
        return false;
    }
    /// How many pixels of the screen are red, green and blue.
    std::array<int, 3> countColors() {
        const auto file = folder.path() + "/screen.rgb";
        ChildProcess({"import", "-display", display, "-window", "root", "-depth", "8", "rgb:" + file}).wait();
        std::ifstream stream(file, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        std::array<int, 3> counts{};
        for (std::size_t i = 0; i + 3 <= bytes.size(); i += 3) {
            for (std::size_t color = 0; color < 3; ++color) {
                bool isPure = true;
                for (std::size_t part = 0; part < 3; ++part)
                    isPure = isPure && bytes[i + part] == static_cast<char>(part == color ? 255 : 0);
                counts[color] += isPure ? 1 : 0;
            }
        }
        return counts;
    }
    /// Whether this bar comes to stand at half of its height and more, high above the other two.
    bool rises(std::size_t bar) {
        return comesTrue([&] {
            const auto counts = countColors();
            const auto others = counts[0] + counts[1] + counts[2] - counts[bar];
            return counts[bar] > 40 * 50 && others < counts[bar] / 2;
        });
    }

    /// A copy that does not find the main window's program: on a desktop without a tray the window would come up and
    /// cover the widget.
    std::string programAlone() const {
        namespace fs = std::filesystem;
        const fs::path original(OSTREL_GUI_PROGRAM);
        const fs::path copy = fs::path(folder.path()) / "bin/ostrel-gui";
        const auto modules = copy.parent_path() / "../lib/ostrel";
        fs::create_directories(copy.parent_path());
        fs::create_directories(modules);
        fs::copy(original, copy);
        fs::copy(original.parent_path() / "../OstrelPlatform/Linux/ostrel-sound.so", modules);
        return copy.string();
    }

    TemporaryFolder folder;
    const std::string display = ":" + std::to_string(10000 + getpid() % 20000);
    SoundServer server{SoundServer::Kind::PulseAudio};
    std::vector<ChildProcess> processes;
};

} // namespace

TEST_F(RealWidget, raisesTheBarOfWhatPlays) {
    const auto skin = folder.write("skin.ini", Skin);
    processes.emplace_back(std::vector<std::string>{programAlone(), skin},
        ChildProcess::Environment{{"DISPLAY", display}, {"QT_QPA_PLATFORM", "xcb"}, {"HOME", folder.path()},
            {"XDG_CONFIG_HOME", folder.path()}, {"DBUS_SESSION_BUS_ADDRESS", "disabled:"}});
    const double tones[] = {70, 250, 1500};
    for (std::size_t bar = 0; bar < 3; ++bar) {
        const auto player
            = server.play("Somebody", tone(tones[bar], SoundServer::SampleRateHz, SoundServer::SampleRateHz * 90, 0.5));
        EXPECT_TRUE(rises(bar)) << testing::PrintToString(countColors());
    }
    EXPECT_TRUE(comesTrue([&] { return countColors() == std::array{0, 0, 0}; })) << "silence lets them fall";
}

} // namespace Ostrel
