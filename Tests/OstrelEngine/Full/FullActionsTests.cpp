#include "OstrelEngine/Full/FullSkinRegistry.h"
#include "OstrelEngine/Full/KeyFileWriter.h"
#include "Support/RunningFullSkin.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace Ostrel {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

/// The action and what the skin then asks of its host.
struct Case {
    std::string action;
    std::vector<std::string> requests;
};

TEST(FullActionsTests, asksForWhatIsNotItsOwn) {
    RunningFullSkin skin("[Rainmeter]\nGroup=Mine | Clocks\nSkinWidth=200\nSkinHeight=100\n"
                         "ContextTitle=One\nContextAction=[!Log 1]\nContextTitle2=--\nContextTitle3=[M]\n"
                         "ContextAction3=[!Log 3]\nContextTitle4=Cut\nContextTitle5=Lost\nContextAction5=[!Log 5]\n"
                         "[M]\nMeasure=Calc\nFormula=7\n");
    skin.skin->start();
    skin.host.where = {.screens = {{{0, 0, 1920, 1080}, {}}, {{1920, 0, 1000, 500}, {}}}, .x = 40, .y = 50};
    const std::vector<Case> cases = {
        // Other skins: one by its name, all, those of a group, of which it may be one.
        {"[!Refresh Other\\Clock]", {"bang Other\\Clock Refresh"}},
        {"[!RainmeterHideMeter M Other/Clock]", {"bang Other\\Clock HideMeter M"}},
        {"[!Refresh *]", {"bang  Refresh", "refresh"}},
        {"[!Refresh Pack\\Test][!Refresh \"\"]", {"refresh", "refresh"}},
        {"[!RefreshGroup clocks]", {"bang clocks Refresh", "refresh"}},
        {"[!UpdateGroup Others]", {"bang Others Update"}},
        {"[!SetVariableGroup V 5 Mine]", {"bang Mine SetVariable V 5"}},
        {"[!DisableMouseActionSkinGroup * Others]", {"bang Others DisableMouseAction Rainmeter *"}},
        {"[!DeactivateConfigGroup Others][!DeactivateConfig]", {"bang Others DeactivateConfig", "deactivate"}},
        // The window, with numbers as formulas.
        {"[!Move (10+5) ([M]*-1)]", {"move 15 -7"}},
        {"[!Move 1 2 Other\\Clock]", {"bang Other\\Clock Move 1 2"}},
        {"[!Move 9999999999 99999999999]", {"move 1000000 1000000"}},
        {"[!SetWindowPosition 50% 10B 50% 100%]", {"move 860 970"}},
        {"[!SetWindowPosition 0@2 25%]", {"move 1820 25"}},
        {"[!SetAnchor 0 0][!SetWindowPosition 10R x]", {"move 1910 50"}},
        {"[!SetWindowPosition 1 2 Other\\Clock]", {"bang Other\\Clock SetWindowPosition 1 2"}},
        {"[!ZPos -2][!ZPos 9][!ZPosGroup 1 Mine]", {"zpos -2", "zpos 2", "bang Mine ZPos 1", "zpos 1"}},
        {"[!Hide][!Toggle][!ToggleFade][!ShowFadeGroup mine]",
            {"hide", "show", "hide fading", "bang mine ShowFade", "show fading"}},
        {"[!SetTransparency (100+300)][!SetTransparencyGroup 5 X]", {"alpha 255", "bang X SetTransparency 5"}},
        // The desktop and the program.
        {"[!SetClip \"a [M]\"]", {"clip a 7"}},
        {"[Play a.wav][PlayLoop \"b c.wav\"][PlayStop]",
            {"play /skins/Pack/Test/a.wav", "loop /skins/Pack/Test/b c.wav", "play "}},
        {"[!SetWallpaper x.png Fill]", {"wallpaper /skins/Pack/Test/x.png Fill"}},
        {"[!About Log][!Quit]", {"ask About Log", "ask Quit"}},
        {"[!EditSkin]", {"edit /skins/Pack/Test/skin.ini"}},
        {"[!SkinCustomMenu]", {"own menu | One -> [!Log 1] |  ->  | 7 -> [!Log 3]"}},
        {"[!SetOption Rainmeter ContextTitle Two][!SkinMenu]", {"menu | Two -> [!Log 1] |  ->  | 7 -> [!Log 3]"}},
        {"[!Log hello Debug][!Settings][!Settings]", {"log : hello", "log : There is no bang !Settings"}},
        {"[!ActivateConfig No\\Where]", {"log : There is no skin No\\Where "}},
        {"[\"C:\\Windows\\notepad.exe\" x]", {"log : This program does not run here: C:\\Windows\\notepad.exe"}},
        {"[][!ShowBlur]", {}},
    };
    for (const auto& [action, requests] : cases) {
        skin.host.requests.clear();
        skin.run(action);
        EXPECT_EQ(skin.host.requests, requests) << action;
    }
    skin.run("[!Draggable 0][!SnapEdges -1][!ClickThrough 1][!FadeDuration (2*50)]");
    EXPECT_FALSE(skin.host.settings.isDraggable || skin.host.settings.snapsToEdges);
    EXPECT_TRUE(skin.host.settings.isClickThrough);
    EXPECT_EQ(skin.host.settings.fadeMilliseconds, 100);
}

TEST(FullActionsTests, givesThePointerToWhatHasTheAction) {
    // A label without actions over a button, a place that nothing paints, a box under an own background.
    RunningFullSkin skin("[Rainmeter]\nSkinWidth=300\nSkinHeight=100\nMouseScrollUpAction=[!Log skin]\n"
                         "MouseOverAction=[!Log inSkin]\nMouseLeaveAction=[!Log outSkin]\n"
                         "RightMouseUpAction=[!Log right$MouseX$]\n"
                         "[Back]\nMeter=Image\nX=0\nY=0\nW=200\nH=100\nSolidColor=0,0,0,1\n"
                         "LeftMouseUpAction=[!Log \"back $MouseX$ $MouseY$ $MouseX:%$ [$MouseY:%]\"]\n"
                         "MouseOverAction=[!Log inBack]\nMouseLeaveAction=[!Log outBack]\nToolTipText=tip\n"
                         "[Button]\nMeter=Image\nX=50\nY=20\nW=40\nH=40\nSolidColor=255,0,0\n"
                         "LeftMouseDownAction=[!Log down]\nLeftMouseDoubleClickAction=[!Log double]\n"
                         "LeftMouseUpAction=[!Log \"button $MouseX$,$MouseY$,$MouseX:%$\"]\n"
                         "MouseOverAction=[!Log inButton]\nMouseLeaveAction=[!Log outButton]\n"
                         "X1MouseUpAction=[!Log x1]\nMouseScrollLeftAction=[!Log tilt]\n"
                         "[Label]\nMeter=Image\nX=60\nY=30\nW=10\nH=10\nSolidColor=0,255,0\n"
                         "[Empty]\nMeter=Image\nX=220\nY=0\nW=50\nH=50\nLeftMouseUpAction=[!Log empty]\n");
    skin.skin->start();
    const auto pointer = skin.skin->makePointerRules({});
    const auto after = [&](auto&& act) {
        skin.host.requests.clear();
        act();
        // The log tells each text once a minute, the host here all.
        return std::exchange(skin.host.requests, {});
    };
    const auto up = [&](double x, double y, PointerButton button = PointerButton::left) {
        return after([&] { pointer->mouseUp({x, y}, button); });
    };
    EXPECT_THAT(up(65, 35), ElementsAre("log Button: button 15,15,37")) << "through the label";
    EXPECT_THAT(up(10, 60), ElementsAre("log Back: back 10 60 5 60")) << "alpha 1 counts";
    EXPECT_THAT(up(230, 10), ElementsAre()) << "nothing is painted";
    EXPECT_THAT(up(65, 35, PointerButton::x1), ElementsAre("log Button: x1"));
    EXPECT_THAT(up(65, 35, PointerButton::right), ElementsAre("log Rainmeter: right65"));
    EXPECT_THAT(up(230, 10, PointerButton::right), ElementsAre());
    EXPECT_THAT(after([&] {
        EXPECT_EQ(pointer->mouseDown({65, 35}, {}), Press::meter);
        EXPECT_EQ(pointer->mouseDown({65, 35}, {PointerButton::left, true}), Press::meter);
        EXPECT_EQ(pointer->mouseDown({65, 35}, {PointerButton::left, false, true}), Press::background) << "bypassed";
        pointer->mouseUp({65, 35}, PointerButton::left);
        EXPECT_EQ(pointer->mouseDown({10, 10}, {}), Press::background) << "an action for the release only";
        pointer->windowWillMove();
        pointer->mouseUp({10, 10}, PointerButton::left);
        EXPECT_EQ(pointer->mouseDown({10, 10}, {PointerButton::right}), Press::meter) << "no menu";
    }),
        ElementsAre("log Button: down", "log Button: double"));
    EXPECT_THAT(after([&] {
        pointer->mouseMoved({65, 35});
    }),
        ElementsAre("log Button: inButton", "log Back: inBack", "log Rainmeter: inSkin", "cursor 1", "tip tip"));
    EXPECT_THAT(after([&] { pointer->mouseMoved({10, 10}); }), ElementsAre("log Button: outButton"));
    EXPECT_THAT(after([&] {
        pointer->mouseMoved({230, 10});
    }),
        ElementsAre("log Back: outBack", "log Rainmeter: outSkin", "cursor 0", "tip "));
    EXPECT_THAT(after([&] {
        EXPECT_TRUE(pointer->scrollWheel({.point = {65, 35}, .delta = 120}));
        EXPECT_TRUE(pointer->scrollWheel({.point = {65, 35}, .delta = 120, .isSideways = true}));
        EXPECT_FALSE(pointer->scrollWheel({.point = {65, 35}, .delta = -120}));
    }),
        ElementsAre("log Rainmeter: skin", "log Button: tilt"));

    // Disabled: it still catches. Cleared: it falls through. Toggled: the last of the two.
    skin.run("[!DisableMouseAction Button LeftMouseUpAction|x1mouseupaction]");
    EXPECT_THAT(up(65, 35), ElementsAre());
    skin.run("[!ClearMouseAction Button *]");
    EXPECT_THAT(up(65, 35), ElementsAre("log Back: back 65 35 32 35"));
    skin.run("[!ToggleMouseAction Button LeftMouseUpAction]");
    EXPECT_THAT(up(65, 35), ElementsAre("log Button: button 15,15,37"));
    skin.run("[!ToggleMouseAction Button LeftMouseUpAction][!DisableMouseAction Rainmeter RightMouseUpAction]");
    EXPECT_THAT(up(65, 35), ElementsAre("log Back: back 65 35 32 35"));
    EXPECT_THAT(up(65, 35, PointerButton::right), ElementsAre());
    skin.run("[!EnableMouseAction * *][!HideMeter Back]");
    EXPECT_THAT(up(65, 35), ElementsAre("log Button: button 15,15,37"));
    EXPECT_THAT(up(10, 60), ElementsAre());
    EXPECT_THAT(after([&] { pointer->mouseMoved({65, 35}); }), Contains("log Button: inButton"));
    skin.run("[!HideMeter Button]");
    EXPECT_THAT(after([&] { pointer->mouseExited(); }), Contains("log Button: outButton"));
}

TEST(FullActionsTests, writesKeysAndNothingElse) {
    struct Write {
        std::string before;
        std::string section, key, value;
        std::string after;
    };
    const std::string little("\xFF\xFE[\0A\0]\0\r\0\n\0k\0=\0001\0\r\0\n\0", 22);
    const std::string changed("\xFF\xFE[\0A\0]\0\r\0\n\0k\0=\0\xE9\0\r\0\n\0", 22);
    const std::vector<Write> writes = {
        {"[A]\nk=1\n; k=2\n[B]\nk=3", "b", "K", "4", "[A]\nk=1\n; k=2\n[B]\nK=4"},
        {"[A]\r\n  k = 1\r\n\r\n[B]\r\n", "A", "j", "2", "[A]\r\n  k = 1\r\nj=2\r\n\r\n[B]\r\n"},
        {"[A]\r\nk=1\nx=2\r\n", "A", "x", "3", "[A]\r\nk=1\nx=3\r\n"},
        {"[A]\nk=1\nk=2\n[A]\nk=3\n", "A", "k", "9", "[A]\nk=9\nk=2\n[A]\nk=3\n"},
        {"[A]\nk=1", "C", "n", "", "[A]\nk=1\n[C]\nn=\n"},
        {"\xEF\xBB\xBF[A]\nk=1\n", "A", "k", "2", "\xEF\xBB\xBF[A]\nk=2\n"},
        {"[A]\nn=\xE9\nk=1\n", "A", "k", "\xE2\x82\xAC", "[A]\nn=\xE9\nk=\x80\n"},
        {"[A]\nn=\xE9\nk=1\n", "A", "k", "\xE4\xB8\x80", "[A]\nn=\xC3\xA9\nk=\xE4\xB8\x80\n"},
        {little, "A", "k", "\xC3\xA9", changed},
    };
    for (const auto& [before, section, key, value, after] : writes)
        EXPECT_EQ(KeyFileWriter::edited(before, section, key, value), after) << testing::PrintToString(before);
}

/// Packs on disk that end with the test.
class LibraryTests : public testing::Test {
protected:
    LibraryTests() { fs::create_directories(skins / "Pack/A"); }
    ~LibraryTests() override {
        for (auto& skin : running)
            skin->stop();
        fs::remove_all(base);
    }

    void write(const std::string& path, std::string_view text) const {
        fs::create_directories((skins / path).parent_path());
        std::ofstream(skins / path, std::ios::binary) << text;
    }
    std::string read(const std::string& path) const {
        std::ifstream file(skins / path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Sends bangs on as an application does.
    class Host final : public RecordingFullHost {
    public:
        FullSkinRegistry* registry = nullptr;
        std::weak_ptr<FullSkin> skin;
        int refused = 0;
        void sendBang(const BangTarget& target, const BangCall& call) override {
            const auto sender = skin.lock();
            if (sender && !registry->send(*sender, target, call))
                ++refused;
        }
        std::optional<std::string> loadedFile(std::string_view config) const override {
            const auto found = registry->find(config);
            return found ? std::optional(found->folders().skinFile) : std::nullopt;
        }
        std::optional<std::string> lastFile(std::string_view config) const override {
            return registry->lastFile(config);
        }
    };

    std::shared_ptr<FullSkin> run(const std::string& path) {
        auto& host = *hosts.emplace_back(std::make_unique<Host>());
        host.registry = &registry;
        auto skin = FullSkin::create(readPackSkin((skins / path).string()).value(),
            Platform{time, time, fakes.host, fakes.fonts, fakes.network}, host);
        host.skin = skin;
        registry.add(skin);
        running.push_back(skin);
        skin->start();
        return skin;
    }
    static std::string variable(const FullSkin& skin, std::string_view name) {
        const auto* value = skin.variables().find(name);
        return value ? *value : "(none)";
    }

    const fs::path base = fs::temp_directory_path() / ("ostrel-actions-" + std::to_string(getpid()));
    const fs::path skins = base / "Skins";
    FakePlatform fakes;
    VirtualTime& time = fakes.queue;
    FullSkinRegistry registry;
    std::vector<std::unique_ptr<Host>> hosts;
    std::vector<std::shared_ptr<FullSkin>> running;
};

TEST_F(LibraryTests, bangsReachTheOtherSkins) {
    write("Pack/A/a.ini", "[Rainmeter]\nGroup=G\n[Variables]\nV=0\n[M]\nMeasure=Calc\nFormula=Counter\n");
    write("Pack/B/b1.ini", "[Rainmeter]\nGroup=G|H\n[Variables]\nV=0\n[T]\nMeter=Image\n");
    write("Pack/B/b2.ini", "[X]\nMeter=Image\n");
    const auto a = run("Pack/A/a.ini");
    const auto b = run("Pack/B/b1.ini");
    a->executeActionString("[!SetVariable V 1 pack/b][!HideMeter T Pack\\B][!SetVariable V 9 Pack\\C]");
    EXPECT_EQ(variable(*a, "V") + variable(*b, "V"), "01");
    EXPECT_FALSE(b->isMeterVisible("T"));
    a->executeActionString("[!SetVariable V 2 B]");
    EXPECT_EQ(variable(*b, "V"), "2") << "below the pack's own root";
    b->executeActionString("[!SetVariable V \"([M]+1)\" *][!SetVariableGroup W 3 g][!SetVariableGroup X 4 H]");
    EXPECT_EQ(variable(*a, "W") + variable(*b, "W"), "33");
    EXPECT_EQ(variable(*a, "X") + variable(*b, "X"), "(none)4");
    // Variants: the next of the folder; a toggle means the one that runs.
    a->executeActionString(
        "[!ActivateConfig Pack\\B][!ToggleConfig Pack\\B][!ActivateConfig Pack\\B b1][!ToggleConfig B]");
    const auto path = [&](const char* name) { return "activate " + (skins / "Pack/B" / name).string(); };
    EXPECT_THAT(hosts[0]->requests, ElementsAre(path("b2.ini"), path("b1.ini"), path("b1.ini"), path("b1.ini")));
    registry.remove(*b);
    a->executeActionString("[!SetVariable V 7 Pack\\B]");
    EXPECT_NE(variable(*b, "V"), "7") << "it is not loaded any more";
    EXPECT_EQ(registry.lastFile("pack/b"), (skins / "Pack/B/b1.ini").string());
}

TEST_F(LibraryTests, skinsThatBangEachOtherComeToAnEnd) {
    for (const auto* name : {"A", "B", "C"}) {
        write(std::string("Pack/") + name + "/s.ini",
            "[N]\nMeasure=Calc\nFormula=N+1\nUpdateDivider=-1\nOnUpdateAction=[!UpdateMeasure N *]\n");
    }
    const auto begun = std::chrono::steady_clock::now();
    for (const auto* name : {"A", "B", "C"})
        run(std::string("Pack/") + name + "/s.ini");
    running[0]->executeActionString("[!UpdateMeasure N Pack\\B]");
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(10));
    EXPECT_GT(hosts[1]->refused, 0);
    running[0]->executeActionString("[!SetVariable After 1 Pack\\C]");
    EXPECT_EQ(variable(*running[2], "After"), "1");
}

TEST_F(LibraryTests, keysAreWrittenInTheLibraryOnly) {
    write("Pack/A/a.ini", "[Variables]\nV=1\n[M]\nMeasure=Calc\nFormula=3\n[Stub]\nMeasure=String\nString=x[]y\n");
    write("Pack/A/Over.inc", "[Variables]\nC=old\n");
    write("Other/o.inc", "[Variables]\nV=1\n");
    write("../outside.inc", "[Variables]\nV=1\n");
    fs::create_symlink(base / "outside.inc", skins / "Pack/A/link.inc");
    const auto skin = run("Pack/A/a.ini");
    skin->executeActionString("[!WriteKeyValue Variables V (1+[M])][!WriteKeyValue Variables C \"#*V*# [*M*] [Stub]\" "
                              "\"over.inc\"][!WriteKeyValue Variables V 5 \"#SKINSPATH#Other\\o.inc\"]");
    EXPECT_THAT(read("Pack/A/a.ini"), HasSubstr("V=(1+3)\n"));
    EXPECT_EQ(variable(*skin, "V"), "1") << "only after a refresh";
    EXPECT_EQ(read("Pack/A/Over.inc"), "[Variables]\nC=#V# [M] x[]y\n");
    EXPECT_EQ(read("Other/o.inc"), "[Variables]\nV=5\n");
    EXPECT_THAT(hosts[0]->requests, ElementsAre());
    skin->executeActionString(
        "[!WriteKeyValue Variables V 6 link.inc][!WriteKeyValue Variables V 6 #SKINSPATH#../outside.inc]"
        "[!WriteKeyValue Variables V 6 new.inc][!WriteKeyValue Variables C \"[M:nothing]\" Over.inc]"
        "[!WriteKeyValue Variables C \"%SYSTEMROOT%\\x\" Over.inc][!WriteKeyValue \"A]\" C 1 Over.inc]");
    EXPECT_EQ(read("../outside.inc"), "[Variables]\nV=1\n");
    EXPECT_FALSE(fs::exists(skins / "Pack/A/new.inc"));
    EXPECT_EQ(read("Pack/A/Over.inc"), "[Variables]\nC=#V# [M] x[]y\n");
    EXPECT_THAT(hosts[0]->requests,
        ElementsAre(HasSubstr("outside the pack"), HasSubstr("outside the pack"), HasSubstr("none is made"),
            HasSubstr("no value: [M:nothing]"), HasSubstr("no value: %SYSTEMROOT%"), HasSubstr("no line can hold")));
}

} // namespace
} // namespace Ostrel
