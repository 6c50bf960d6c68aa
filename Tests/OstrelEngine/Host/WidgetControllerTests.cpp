#include "OstrelEngine/Host/WidgetController.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelEngine/Host/BackgroundOptions.h"
#include "OstrelEngine/Host/FakeDesktop.h"
#include "OstrelEngine/Runtime/SkinRuntime.h"
#include "Support/FakePlatform.h"
#include "Support/FakeSkinHost.h"
#include "Support/TemporaryFolder.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>

namespace Ostrel {
namespace {

class WidgetControllerTest : public testing::Test {
protected:
    WidgetControllerTest() { fake.clock.uptime = 3600; }

    SkinConfig load(std::string_view text) {
        const auto path = folder.write("Skin.ini", text);
        DiskFileProvider files;
        DiagnosticCollector diagnostics;
        return SkinLoader(files, diagnostics).load(path).value();
    }

    WidgetController& open(std::string_view text) {
        controller = std::make_unique<WidgetController>(load(text), fake.platform, desktop);
        controller->onStop = [this](WidgetController&) { ++stops; };
        controller->start();
        return *controller;
    }

    void tick(int count = 1) {
        for (int i = 0; i < count; ++i) {
            fake.clock.uptime += 1;
            fake.queue.fireTimers();
            fake.queue.runQueued();
        }
    }

    QSize shownSize() const { return desktop.screens.back()->shown.size(); }
    QRgb shownPixel(int x, int y) const { return desktop.screens.back()->shown.pixel(x, y); }

    TemporaryFolder folder;
    FakePlatform fake;
    FakeDesktop desktop;
    std::unique_ptr<WidgetController> controller;
    int stops = 0;
};

constexpr const char* RedSkin = "[Rainmeter]\nBackgroundMode=2\nSolidColor=255,0,0\n"
                                "[Box]\nMeter=Image\nX=0\nY=24\nW=300\nH=50\nSolidColor=0,0,255\n";

TEST_F(WidgetControllerTest, showsASkinWhereItOpensAndOnce) {
    auto& widget = open(RedSkin);
    EXPECT_TRUE(widget.isRunning());
    EXPECT_EQ(widget.windowOrigin(), (Point{100, 100}));
    EXPECT_EQ(shownSize(), QSize(324, 98));
    EXPECT_EQ(shownPixel(10, 10), 0xffff0000);
    EXPECT_EQ(shownPixel(10, 30), 0xff0000ff);
    widget.start(Point{5, 5});
    EXPECT_EQ(desktop.screens.size(), 1u);
    EXPECT_EQ(widget.windowOrigin(), (Point{100, 100}));

    widget.stop();
    EXPECT_FALSE(widget.isRunning());
    EXPECT_EQ(widget.windowOrigin(), std::nullopt);
    EXPECT_EQ(stops, 1);
    widget.start(Point{50, 60});
    EXPECT_EQ(widget.windowOrigin(), (Point{50, 60}));
}

TEST_F(WidgetControllerTest, staysStoppedWhenARefreshWasAskedForBefore) {
    auto& widget = open("[Rainmeter]\n[Tick]\nMeasure=Calc\nFormula=Tick+1\nIfEqualValue=2\n"
                        "IfEqualAction=[!DeactivateConfig][!Refresh][!RefreshApp][!ActivateConfig Other]\n");
    std::string activated;
    widget.onActivateConfigRequest = [&](const std::string& path, bool) { activated = path; };
    tick(3);
    EXPECT_FALSE(widget.isRunning());
    EXPECT_EQ(stops, 1);
    EXPECT_TRUE(activated.ends_with("/Other/Skin.ini")) << activated;
}

TEST_F(WidgetControllerTest, asksWhereToOpenWithTheSize) {
    WidgetController widget(load(RedSkin), fake.platform, desktop);
    widget.chooseOrigin = [](Size size) { return Point{size.width, size.height}; };
    widget.start();
    EXPECT_EQ(widget.windowOrigin(), (Point{324, 98}));
}

TEST_F(WidgetControllerTest, followsTheSizeByMoreThanAPoint) {
    auto& widget = open("[Rainmeter]\n[Tick]\nMeasure=Calc\nFormula=Tick+1\n"
                        "IfEqualValue=2\nIfEqualAction=!SetOption Box W 300.5\n"
                        "IfAboveValue=2\nIfAboveAction=!SetOption Box W 301.5\n"
                        "[Box]\nMeter=Image\nX=0\nY=24\nW=300\nH=50\nSolidColor=0,0,255\n");
    EXPECT_EQ(shownSize(), QSize(324, 98));
    tick();
    EXPECT_EQ(shownSize(), QSize(324, 98));
    tick();
    EXPECT_EQ(shownSize(), QSize(326, 98));
    EXPECT_EQ(shownPixel(300, 30), 0xff0000ff);
    EXPECT_EQ(widget.windowOrigin(), (Point{100, 100}));
}

TEST_F(WidgetControllerTest, idlesWithoutPainting) {
    open(RedSkin);
    const int before = desktop.screens.back()->presentations;
    tick(20);
    EXPECT_EQ(desktop.screens.back()->presentations, before);
}

TEST_F(WidgetControllerTest, reloadsInPlaceAndSurvivesAFileThatIsGone) {
    auto& widget = open(RedSkin);
    widget.stop();
    widget.start(Point{70, 80});
    load("[Rainmeter]\nBackgroundMode=2\nSolidColor=0,255,0\n[Box]\nMeter=Image\nW=400\nH=50\n");
    stops = 0;
    widget.reload();
    EXPECT_EQ(widget.windowOrigin(), (Point{70, 80}));
    EXPECT_EQ(shownSize(), QSize(424, 98));
    EXPECT_EQ(shownPixel(10, 10), 0xff00ff00);

    std::remove(widget.config().filePath.c_str());
    widget.reload();
    EXPECT_TRUE(widget.isRunning());
    EXPECT_EQ(shownSize(), QSize(424, 98));
    EXPECT_EQ(stops, 0);
}

TEST_F(WidgetControllerTest, endsAndRefreshesFromTheMainQueue) {
    auto& widget = open("[Rainmeter]\n[Tick]\nMeasure=Calc\nFormula=Tick+1\n"
                        "IfEqualValue=2\nIfEqualAction=!Refresh\nIfAboveValue=2\nIfAboveAction=!DeactivateConfig\n");
    tick();
    EXPECT_EQ(desktop.screens.size(), 2u) << "not refreshed";
    tick();
    EXPECT_TRUE(widget.isRunning()) << "the refresh did not begin anew";
    EXPECT_EQ(desktop.screens.size(), 3u);
}

TEST_F(WidgetControllerTest, dropsWhatASkinAskedForWhenTheControllerIsGone) {
    open("[Rainmeter]\nOnRefreshAction=[!Refresh *][!DeactivateConfig]\n");
    EXPECT_EQ(stops, 0) << "not in the middle of the skin's own work";
    controller.reset();
    fake.queue.runQueued();
    EXPECT_EQ(stops, 0);

    open("[Rainmeter]\nOnRefreshAction=!DeactivateConfig\n");
    fake.queue.runQueued();
    EXPECT_EQ(stops, 1);
    EXPECT_FALSE(controller->isRunning());
}

TEST_F(WidgetControllerTest, handsOnWhatConcernsOtherSkins) {
    folder.write("Skins/Other/Other.ini", "[Rainmeter]\n");
    std::string asked;
    WidgetController widget(load("[Rainmeter]\nOnRefreshAction=[!Refresh *][!ActivateConfig Other Other.ini]"
                                 "[!ToggleConfig Other Other.ini][!DeactivateConfig Other Other.ini]\n"),
        fake.platform, desktop);
    widget.onActivateConfigRequest = [&](const std::string& path, bool toggle) {
        asked += (toggle ? "toggle " : "open ") + path.substr(path.rfind('/') + 1) + " ";
    };
    widget.onDeactivateConfigRequest
        = [&](const std::string& path) { asked += "close " + path.substr(path.rfind('/') + 1) + " "; };
    widget.onRefreshAppRequest = [&] { asked += "refresh "; };
    widget.start();
    EXPECT_EQ(asked, "");
    fake.queue.runQueued();
    EXPECT_EQ(asked, "refresh open Other.ini toggle Other.ini close Other.ini ");
}

/// The samples of a wake once served a click that came long after it.
TEST_F(WidgetControllerTest, aClickSeesTheHostAsItIsNow) {
    class Sampled final : public FakeHostStatistics {
    public:
        void beginWake() override { sample = network; }
        std::optional<NetworkBytes> networkBytes() override { return sample; }
        std::optional<NetworkBytes> sample;
    } host;
    Platform platform{fake.clock, fake.queue, host, fake.fonts, fake.network};
    FakeSkinHost skinHost;
    const auto skin
        = SkinRuntime::create(load("[Net]\nMeasure=NetIn\nUpdateDivider=-1\n[Box]\nMeter=Stub\nX=0\nY=24\nW=10\nH=10\n"
                                   "LeftMouseUpAction=[!UpdateMeasure Net]\n"),
            platform, skinHost);
    std::vector<Drawable> shown;
    skinHost.onPublish = [&](const auto& drawables) { shown = drawables; };
    skin->redraw();
    const auto pointer = skin->makePointerRules(shown);
    const auto received = [&](std::uint64_t bytes) {
        host.network = NetworkBytes{bytes, 0};
        pointer->mouseUp({5, 30}, PointerButton::left);
        return skin->measure("Net")->value().numericValue;
    };
    EXPECT_EQ(received(1000), 0);
    EXPECT_EQ(received(1500), 500);
}

TEST_F(WidgetControllerTest, freezesAndUnfreezes) {
    auto& widget = open(RedSkin);
    EXPECT_FALSE(widget.isFrozen());
    widget.toggleFreeze();
    EXPECT_TRUE(widget.isFrozen());
    widget.toggleFreeze();
    EXPECT_FALSE(widget.isFrozen());
}

TEST_F(WidgetControllerTest, readsTheBackgroundOptions) {
    const auto margins = [&](std::string_view text) {
        const auto background = backgroundOf(load("[Rainmeter]\nBackgroundMargins=" + std::string(text) + "\n"));
        const auto [top, right, bottom, left] = background.margins;
        return std::vector<double>{left, top, right, bottom};
    };
    EXPECT_EQ(margins("1,2,3,4"), (std::vector<double>{1, 2, 3, 4}));
    EXPECT_EQ(margins(" 1.5 , x, -2, 3,,4 "), (std::vector<double>{1.5, -2, 3, 4}));
    for (const char* text : {"1,2,3", "1,2,3,4,5", "", "a,b,c,d"})
        EXPECT_EQ(margins(text), (std::vector<double>{0, 0, 0, 0})) << text;

    QImage picture(3, 2, QImage::Format_ARGB32);
    picture.fill(Qt::green);
    picture.save(QString::fromStdString(folder.path() + "/Back.PNG"));
    const auto background
        = backgroundOf(load("[Rainmeter]\nBackground=#CURRENTPATH#back.png\nBackgroundMode=3\nSolidColor=1,2,3\n"));
    EXPECT_EQ(background.mode, 3);
    EXPECT_EQ(background.image.size(), QSize(3, 2));
    EXPECT_EQ(background.solidColor, (Color{1 / 255.0, 2 / 255.0, 3 / 255.0, 1}));
    for (const char* name : {"missing.png", "Skin.ini", "http://127.0.0.1:9/a.png", ""})
        EXPECT_TRUE(backgroundOf(load("[Rainmeter]\nBackground=" + std::string(name) + "\n")).image.isNull()) << name;
}

} // namespace
} // namespace Ostrel
