#include "Support/CommandLine.h"
#include "Support/TemporaryFolder.h"

#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {
namespace {

using testing::HasSubstr;

class RenderTest : public testing::Test {
protected:
    CommandResult render(std::vector<std::string> options = {}) {
        std::vector<std::string> arguments{"render", skin, "-o", output};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return runOstrel(arguments);
    }

    QImage picture(std::vector<std::string> options = {}) {
        const auto result = render(std::move(options));
        EXPECT_EQ(result.status, 0) << result.messages;
        EXPECT_EQ(result.messages, "");
        return QImage(QString::fromStdString(output));
    }

    TemporaryFolder folder;
    std::string output = folder.path() + "/out.png";
    /// A box that is red on the first tick, green on the second and blue after that, in a widget of 220 by 83.
    std::string skin = folder.write("Skin.ini",
        "[Rainmeter]\nUpdate=10\n"
        "[Tick]\nMeasure=Calc\nFormula=Tick+1\n"
        "IfEqualValue=2\nIfEqualAction=!SetOption Box SolidColor 0,255,0\n"
        "IfAboveValue=2\nIfAboveAction=!SetOption Box SolidColor 0,0,255\n"
        "[Box]\nMeter=Image\nX=10\nY=30\nW=100\nH=28.5\nSolidColor=255,0,0\n");
};

TEST_F(RenderTest, showsPicturesWhoseNameComesLate) {
    QImage red(40, 30, QImage::Format_RGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(QString::fromStdString(folder.path() + "/red.png")));
    for (const auto* options :
        {"MeasureName=Name", "MeasureName=Name\nImageName=[Name]\nDynamicVariables=1", "ImageName=gone.png\nX=0"}) {
        skin = folder.write("Late.ini",
            std::string("[Rainmeter]\nUpdate=10\n[Name]\nMeasure=String\nString=red.png\n[Tick]\nMeasure=Calc\n"
                        "Formula=Tick+1\nIfAboveValue=1\nIfAboveAction=[!SetOption Late ")
                + (std::string_view(options).starts_with("ImageName") ? "ImageName red.png" : "Y 24")
                + "][!UpdateMeter *][!Redraw]\n[Late]\nMeter=Image\nY=24\n" + options + "\n");
        EXPECT_EQ(picture({"--ticks", "5"}).pixel(10, 30), 0xffff0000) << options;
    }
}

TEST_F(RenderTest, drawsTheWidgetInItsSizeAndScale) {
    const QImage once = picture();
    EXPECT_EQ(once.size(), QSize(220, 83));
    EXPECT_EQ(once.pixel(5, 5), 0u);
    EXPECT_EQ(once.pixel(50, 40), 0xff00ff00);
    const QImage twice = picture({"--scale", "2"});
    EXPECT_EQ(twice.size(), QSize(440, 166));
    EXPECT_EQ(twice.pixel(19, 80), 0u);
    EXPECT_EQ(twice.pixel(20, 80), 0xff00ff00);
    const QImage over = picture({"--background", "10,20,30"});
    EXPECT_EQ(over.pixel(5, 5), 0xff0a141e);
    EXPECT_EQ(over.pixel(50, 40), 0xff00ff00);
}

TEST_F(RenderTest, countsTicksAndThenPlaysTheScenario) {
    EXPECT_EQ(picture({"--ticks", "1"}).pixel(50, 40), 0xffff0000);
    EXPECT_EQ(picture({"--ticks", "2"}).pixel(50, 40), 0xff00ff00);
    EXPECT_EQ(picture({"--ticks", "1000"}).pixel(50, 40), 0xff0000ff);
    const auto nothing = folder.write("nothing", "# stays on its first tick\n");
    EXPECT_EQ(picture({"--scenario", nothing}).pixel(50, 40), 0xffff0000);
    const auto waits = folder.write("waits", "wait 1\ntick 1\n");
    EXPECT_EQ(picture({"--scenario", waits}).pixel(50, 40), 0xff00ff00);
    const auto acts = folder.write("acts", "do [!SetOption Box SolidColor 1,2,3][!Redraw]\n");
    EXPECT_EQ(picture({"--ticks", "5", "--scenario", acts}).pixel(50, 40), 0xff010203);
}

TEST_F(RenderTest, drawsSizesThatHaveAPictureAndNamesOthers) {
    struct Case {
        const char* width;
        bool fits;
    };
    for (const Case& c : {Case{"0", true}, Case{"-40", true}, Case{"3000", true}, Case{"40000", false},
             Case{"1e9", false}, Case{"1e300", false}}) {
        skin = folder.write("Size.ini", std::string("[Rainmeter]\n[Box]\nMeter=Image\nY=30\nH=2\nW=") + c.width + "\n");
        const auto result = render({"--ticks", "1"});
        EXPECT_EQ(result.status, c.fits ? 0 : 1) << c.width;
        EXPECT_EQ(result.messages.starts_with("ostrel: cannot render " + skin + ": "), !c.fits) << result.messages;
    }
}

TEST_F(RenderTest, tellsWhatItCannotReadOrWriteAndWhatIsWrongUsage) {
    for (const std::vector<std::string>& options :
        {std::vector<std::string>{"--ticks", "0"}, {"--ticks", "x"}, {"--ticks"}, {"--scale", "0"}, {"--scale", "-1"},
            {"--scale", "1e9"}, {"--scale", "nan"}, {"--background", "red"}, {"--background", "1,2"}, {"--now", "noon"},
            {"--colour", "1"}, {"another.ini"}, {"-o", ""}})
        EXPECT_EQ(render(options).status, 2) << options.front();
    EXPECT_EQ(runOstrel({"render", skin}).status, 2);
    EXPECT_EQ(render({"--scenario", folder.write("wrong", "jump 1\n")}).status, 2);

    EXPECT_EQ(
        render({"--scenario", folder.path() + "/none"}).messages, "ostrel: cannot read " + folder.path() + "/none\n");
    output = folder.path() + "/none/out.png";
    const auto unwritable = render({"--ticks", "1"});
    EXPECT_EQ(unwritable.status, 1);
    EXPECT_EQ(unwritable.messages, "ostrel: cannot write " + output + "\n");
    skin = folder.path() + "/none.ini";
    const auto missing = render();
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.messages, HasSubstr("ostrel: cannot load " + skin + "\n"));
}

} // namespace
} // namespace Ostrel
