#pragma once

#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Actions/MeterPointer.h"
#include "OstrelEngine/Measures/InputTextPresentation.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Writes down what the pointer and the field make a skin do: actions as they are, events as "kind x,y meter".
class FakePointerClient final : public PointerClient, public InputAnswers {
public:
    void runPointerAction(const std::string& action) override {
        log.push_back(action);
        if (onAction)
            onAction(action);
    }
    void pointerDidAct(MouseEventKind kind, Point point, const std::optional<std::string>& name) override {
        static constexpr const char* Kinds[] = {"down", "drag", "up", "scrollUp", "scrollDown"};
        if (recordsEvents)
            log.push_back(std::string(Kinds[static_cast<int>(kind)]) + " " + formatNumeric(point.x) + ","
                + formatNumeric(point.y) + " " + name.value_or("-"));
    }
    void commandScroll(WidgetCommandScrollDirection direction) override {
        log.emplace_back(direction == WidgetCommandScrollDirection::up ? "command up" : "command down");
    }
    void submitInputText(std::string_view measure, std::string_view value) override {
        log.push_back("submit " + std::string(measure) + " " + std::string(value));
        if (onSubmit)
            onSubmit();
    }
    void dismissInputText(std::string_view measure) override { log.push_back("dismiss " + std::string(measure)); }

    std::vector<std::string> log;
    bool recordsEvents = true;
    std::function<void(const std::string&)> onAction;
    std::function<void()> onSubmit;
};

} // namespace Ostrel
