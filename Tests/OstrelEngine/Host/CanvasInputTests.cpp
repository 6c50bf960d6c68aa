#include "OstrelEngine/Host/CanvasInput.h"

#include "OstrelEngine/Host/FakeMeter.h"
#include "OstrelEngine/Host/FakePointerClient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Options = std::initializer_list<std::pair<std::string_view, std::string>>;

/// Meters that a test places, under a canvas input that writes down what it does.
class Canvas : private InputFieldView {
public:
    Canvas() {
        auto rules = std::make_unique<MeterPointer>(drawables, client);
        pointer = rules.get();
        input.connect(std::move(rules), client);
        input.setFieldView(this);
    }

    FakeMeter& add(std::string name, MeterFrame frame, Options options = {}) {
        auto meter = std::make_shared<FakeMeter>(std::move(name), frame);
        for (const auto& [key, value] : options)
            meter->setOption(key, value);
        drawables.push_back({meter, {}});
        return *meter;
    }
    void remove(std::string_view name) {
        std::erase_if(drawables, [&](const Drawable& drawable) { return drawable.meter->name() == name; });
    }
    /// What was written since the last call.
    std::vector<std::string> taken() { return std::exchange(log, {}); }

    std::vector<Drawable> drawables;
    std::shared_ptr<FakePointerClient> client = std::make_shared<FakePointerClient>();
    std::vector<std::string>& log = client->log;
    CanvasInput input;
    const MeterPointer* pointer = nullptr;

private:
    void showField(const std::optional<InputTextPresentation>& field) override {
        log.push_back(field ? "field " + field->measureName : "no field");
    }
};

TEST(CanvasInput, hitsTheTopmostRectangle) {
    Canvas canvas;
    canvas.add("Below", {0, 0, 100, 100});
    canvas.add("Above", {50, 50, 10, 10});
    canvas.add("Flat", {0, 0, 100, 0});
    const auto name = [&](Point point) {
        const auto* hit = canvas.pointer->topmostDrawable(point);
        return hit ? hit->meter->name() : "-";
    };
    EXPECT_EQ(name({50, 50}), "Above");
    EXPECT_EQ(name({60, 55}), "Below") << "the right edge belongs to what lies behind";
    EXPECT_EQ(name({0, 0}), "Below");
    EXPECT_EQ(name({100, 1}), "-");
}

TEST(CanvasInput, hoversOverOneMeterAtATime) {
    Canvas canvas;
    canvas.add("A", {0, 0, 10, 10}, {{"MouseOverAction", "over A $MouseX$"}, {"MouseLeaveAction", "leave A"}});
    canvas.add("B", {10, 0, 10, 10}, {{"MouseLeaveAction", "leave B"}});
    canvas.input.mouseMoved({1, 1});
    canvas.input.mouseMoved({2, 2});
    EXPECT_THAT(canvas.taken(), ElementsAre("over A $MouseX$"));
    canvas.input.mouseMoved({11, 1});
    canvas.input.mouseMoved({50, 50});
    EXPECT_THAT(canvas.taken(), ElementsAre("leave A", "leave B"));
    canvas.input.mouseMoved({1, 1});
    canvas.input.mouseExited();
    canvas.input.mouseExited();
    EXPECT_THAT(canvas.taken(), ElementsAre("over A $MouseX$", "leave A"));
}

TEST(CanvasInput, survivesAHoverActionThatChangesWhatLiesThere) {
    Canvas canvas;
    canvas.add("Face", {0, 0, 10, 10}, {{"MouseOverAction", "swap"}, {"MouseLeaveAction", "leave Face"}});
    canvas.client->onAction = [&](const std::string& action) {
        if (action == "swap") {
            canvas.remove("Face");
            canvas.add("Back", {0, 0, 10, 10}, {{"MouseOverAction", "over Back"}, {"MouseLeaveAction", "leave Back"}});
        }
    };
    canvas.input.mouseMoved({1, 1});
    canvas.input.mouseMoved({2, 1});
    EXPECT_THAT(canvas.taken(), ElementsAre("swap")) << "what came up under the pointer counts as entered";
    canvas.input.mouseMoved({20, 1});
    EXPECT_THAT(canvas.taken(), ElementsAre("leave Back"));
}

TEST(CanvasInput, keepsAPressedMeterThroughADrag) {
    Canvas canvas;
    canvas.add("A", {0, 0, 10, 10}, {{"LeftMouseDownAction", "down A"}, {"LeftMouseDragAction", "drag A"}});
    canvas.add("B", {10, 0, 10, 10}, {{"LeftMouseUpAction", "up B $MouseX:$"}});
    EXPECT_EQ(canvas.input.mouseDown({1, 1}), Press::meter);
    canvas.input.mouseDragged({12, 1});
    canvas.input.mouseUp({12, 1});
    EXPECT_THAT(canvas.taken(), ElementsAre("down A", "down 1,1 A", "drag A", "drag 12,1 A", "up 12,1 A", "up B 2"));
    canvas.input.mouseUp({5, 1});
    canvas.input.mouseDragged({15, 1});
    EXPECT_THAT(canvas.taken(), ElementsAre("up 5,1 A", "drag 15,1 B"));
    EXPECT_EQ(canvas.input.mouseDown({50, 1}), Press::background);
    canvas.input.mouseUp({50, 1});
    EXPECT_THAT(canvas.taken(), ElementsAre("down 50,1 -", "up 50,1 -"));
}

TEST(CanvasInput, aReleaseGoesToTheMeterOfThePressWhileItHasAnAction) {
    Canvas canvas;
    canvas.add("A", {0, 0, 10, 10}, {{"LeftMouseUpAction", "up A"}});
    canvas.add("B", {10, 0, 10, 10}, {{"LeftMouseUpAction", "up B"}});
    canvas.input.mouseDown({1, 1});
    canvas.input.mouseUp({12, 1});
    EXPECT_THAT(canvas.taken(), ElementsAre("down 1,1 A", "up 12,1 A", "up A"));
    canvas.input.mouseDown({1, 1});
    canvas.remove("A");
    canvas.taken();
    canvas.input.mouseUp({12, 1});
    EXPECT_THAT(canvas.taken(), ElementsAre("up 12,1 A", "up B"));
}

TEST(CanvasInput, replacesMouseVariablesAndCoordinates) {
    Canvas canvas;
    canvas.add("A", {10, 20, 200, 50},
        {{"LeftMouseDownAction", "$MouseX:%$ $MouseY$ [a:x] [A:W]+[Gone:X] [A:Z] [!A:X] [#A:X]"}});
    canvas.input.mouseDown({60, 30.5});
    EXPECT_EQ(canvas.taken().front(), "25 30 10.0000 200.0000+0 0.0000 [!A:X] [#A:X]");
}

TEST(CanvasInput, scrollsTheMeterBelowThePointer) {
    Canvas canvas;
    canvas.add("A", {0, 0, 10, 10}, {{"MouseScrollUpAction", "up $MouseX$"}});
    EXPECT_TRUE(canvas.input.scrollWheel({.point = {1, 1}, .delta = 0.5}));
    EXPECT_FALSE(canvas.input.scrollWheel({.point = {1, 1}, .delta = -1}));
    EXPECT_FALSE(canvas.input.scrollWheel({.point = {50, 1}, .delta = 1}));
    EXPECT_FALSE(canvas.input.scrollWheel({.point = {1, 1}, .delta = 0.0001}));
    EXPECT_THAT(canvas.taken(), ElementsAre("up 1", "scrollUp 1,1 A", "scrollDown 1,1 A", "scrollUp 50,1 -"));
}

TEST(CanvasInput, stepsOnceForEachCommandGesture) {
    using enum ScrollPhase;
    Canvas canvas;
    canvas.add("A", {0, 0, 10, 10}, {{"MouseScrollUpAction", "up"}});
    const auto scroll = [&](double delta, bool precise, ScrollPhase phase, ScrollPhase momentum, double uptime) {
        canvas.input.scrollWheel({.point = {1, 1},
            .delta = delta,
            .isPrecise = precise,
            .phase = phase,
            .momentum = momentum,
            .isCommandHeld = true,
            .uptimeSeconds = uptime});
        return canvas.taken().size();
    };
    EXPECT_EQ(scroll(1, false, none, none, 1), 1U);
    EXPECT_EQ(scroll(1, false, changed, none, 1), 1U) << "a wheel steps at every notch";
    EXPECT_EQ(scroll(1, true, none, none, 1.2), 0U);
    EXPECT_EQ(scroll(1, true, none, none, 1.25), 1U);
    EXPECT_EQ(scroll(0, true, began, none, 2), 0U);
    EXPECT_EQ(scroll(1, true, mayBegin, none, 2), 1U);
    for (const auto phase : {changed, stationary, ended, cancelled})
        EXPECT_EQ(scroll(1, true, phase, none, 9), 0U);
    EXPECT_EQ(scroll(1, true, none, changed, 99), 0U);
    canvas.input.scrollWheel({.point = {1, 1}, .delta = 2, .isCommandHeld = true});
    canvas.input.scrollWheel({.point = {1, 1}, .delta = 2, .isCommandHeld = true, .isCommandReversed = true});
    EXPECT_THAT(canvas.taken(), ElementsAre("command up", "command down"));
}

TEST(CanvasInput, holdsOneInputField) {
    Canvas canvas;
    canvas.add("A", {0, 0, 100, 100}, {{"LeftMouseDownAction", "down A"}});
    InputTextPresentation field;
    field.measureName = "Ask";
    field.frame = {10, 10, 20, 10};
    canvas.input.promptInput(field);
    field.measureName = "Other";
    canvas.input.promptInput(field);
    EXPECT_THAT(canvas.taken(), ElementsAre("field Ask", "no field", "field Other")) << "replaced without a word";
    EXPECT_EQ(canvas.input.mouseDown({10, 19}), Press::field);
    EXPECT_THAT(canvas.taken(), IsEmpty());
    EXPECT_EQ(canvas.input.mouseDown({30, 15}), Press::field);
    EXPECT_THAT(canvas.taken(), ElementsAre("no field", "dismiss Other")) << "the click is spent";

    field.focusDismiss = false;
    canvas.input.promptInput(field);
    EXPECT_EQ(canvas.input.mouseDown({30, 15}), Press::meter);
    canvas.input.submitActiveInput("text");
    canvas.input.submitActiveInput("late");
    canvas.input.dismissActiveInputByUser();
    canvas.input.promptInput(std::nullopt);
    EXPECT_THAT(canvas.taken(), ElementsAre("field Other", "down A", "down 30,15 A", "no field", "submit Other text"));
}

TEST(CanvasInput, anAnswerMayAskAgain) {
    Canvas canvas;
    InputTextPresentation field;
    field.measureName = "Ask";
    canvas.client->onSubmit = [&] {
        canvas.input.promptInput(field);
        canvas.input.submitActiveInput("a toolkit's late report");
    };
    canvas.input.promptInput(field);
    canvas.input.submitActiveInput("1");
    EXPECT_TRUE(canvas.input.activeInput());
    canvas.taken();
    canvas.input.submitActiveInput("2");
    EXPECT_THAT(canvas.taken(), ElementsAre("no field", "submit Ask 2", "field Ask"));
}

TEST(CanvasInput, withoutASkinNothingHappens) {
    CanvasInput input;
    input.mouseMoved({1, 1});
    input.mouseDown({1, 1});
    input.mouseDragged({1, 1});
    input.mouseUp({1, 1});
    EXPECT_FALSE(input.scrollWheel({.point = {1, 1}, .delta = 1}));
    input.promptInput(InputTextPresentation());
    input.submitActiveInput("");
    EXPECT_FALSE(input.activeInput());
}

} // namespace
} // namespace Ostrel
