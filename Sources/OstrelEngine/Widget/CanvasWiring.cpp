#include "OstrelEngine/Widget/CanvasWiring.h"

#include "OstrelCore/Text.h"
#include "OstrelEngine/Widget/CanvasInput.h"
#include "OstrelEngine/Widget/SkinRuntime.h"

namespace Ostrel {

namespace {

/// A command-scroll acts on the skin as a whole.
void runCommandScroll(SkinRuntime& runtime, WidgetCommandScrollDirection direction) {
    const auto& options = runtime.config().rainmeterOptions.allOptions;
    const auto action = direction == WidgetCommandScrollDirection::up ? option(options, "MouseScrollUpAction"_key)
                                                                      : option(options, "MouseScrollDownAction"_key);
    if (const auto text = trimmed(action.value_or("")); !text.empty())
        runtime.executeActionString(text);
}

} // namespace

void connectCanvas(CanvasInput& input, const std::shared_ptr<SkinRuntime>& runtime) {
    const std::weak_ptr<SkinRuntime> weak(runtime);
    input.onAction = [weak](const std::string& action) {
        if (const auto skin = weak.lock())
            skin->executeActionString(action);
    };
    input.onMouseEvent = [weak](MouseEventKind kind, Point point, const std::optional<std::string>& meterName) {
        if (const auto skin = weak.lock())
            skin->handleMouseEvent(kind, point, meterName);
    };
    input.onInputSubmit = [weak](const std::string& measureName, const std::string& value) {
        if (const auto skin = weak.lock())
            skin->submitInputText(measureName, value);
    };
    input.onInputDismiss = [weak](const std::string& measureName) {
        if (const auto skin = weak.lock())
            skin->dismissInputText(measureName);
    };
    input.onCommandScroll = [weak](WidgetCommandScrollDirection direction) {
        if (const auto skin = weak.lock())
            runCommandScroll(*skin, direction);
    };
}

} // namespace Ostrel
