#include "OstrelEngine/Host/CanvasWiring.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Host/CanvasInput.h"
#include "OstrelEngine/Runtime/SkinRuntime.h"
#include "OstrelPlatform/HostStatistics.h"

#include <optional>
#include <string>

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

void connectCanvas(CanvasInput& input, const std::shared_ptr<SkinRuntime>& runtime, HostStatistics& statistics) {
    const auto awake = [weak = std::weak_ptr(runtime), &statistics] {
        statistics.beginWake();
        return weak.lock();
    };
    input.onAction = [awake](const std::string& action) {
        if (const auto skin = awake())
            skin->executeActionString(action);
    };
    input.onMouseEvent = [awake](MouseEventKind kind, Point point, const std::optional<std::string>& meterName) {
        if (const auto skin = awake())
            skin->handleMouseEvent(kind, point, meterName);
    };
    input.onInputSubmit = [awake](const std::string& measureName, const std::string& value) {
        if (const auto skin = awake())
            skin->submitInputText(measureName, value);
    };
    input.onInputDismiss = [awake](const std::string& measureName) {
        if (const auto skin = awake())
            skin->dismissInputText(measureName);
    };
    input.onCommandScroll = [awake](WidgetCommandScrollDirection direction) {
        if (const auto skin = awake())
            runCommandScroll(*skin, direction);
    };
}

} // namespace Ostrel
