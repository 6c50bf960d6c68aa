#include "OstrelEngine/Host/CanvasInput.h"

#include <utility>

namespace Ostrel {

void CanvasInput::connect(std::unique_ptr<PointerRules> rules, std::weak_ptr<InputAnswers> answers) {
    rules_ = std::move(rules);
    answers_ = std::move(answers);
}

void CanvasInput::mouseMoved(Point point) {
    if (rules_)
        rules_->mouseMoved(point);
}

void CanvasInput::mouseExited() {
    if (rules_)
        rules_->mouseExited();
}

Press CanvasInput::mouseDown(Point point, const PointerPress& press) {
    if (press.button == PointerButton::left && activeInput_) {
        if (activeInput_->frame.contains(point))
            return Press::field;
        if (activeInput_->focusDismiss) {
            dismissActiveInputByUser();
            return Press::field;
        }
    }
    return rules_ ? rules_->mouseDown(point, press) : Press::background;
}

void CanvasInput::mouseDragged(Point point) {
    if (rules_)
        rules_->mouseDragged(point);
}

void CanvasInput::windowWillMove() {
    if (rules_)
        rules_->windowWillMove();
}

void CanvasInput::mouseUp(Point point, PointerButton button) {
    if (rules_)
        rules_->mouseUp(point, button);
}

bool CanvasInput::scrollWheel(const ScrollEvent& event) {
    return rules_ && rules_->scrollWheel(event);
}

void CanvasInput::promptInput(const std::optional<InputTextPresentation>& presentation) {
    clearActiveInput();
    if (!presentation)
        return;
    activeInput_ = presentation;
    showField();
}

void CanvasInput::clearActiveInput() {
    if (std::exchange(activeInput_, std::nullopt))
        showField();
}

void CanvasInput::showField() {
    if (fieldView_)
        fieldView_->showField(activeInput_);
}

void CanvasInput::submitActiveInput(const std::string& value) {
    if (!activeInput_ || std::exchange(isCompletingInput_, true))
        return;
    const auto measure = activeInput_->measureName;
    clearActiveInput();
    if (const auto answers = answers_.lock())
        answers->submitInputText(measure, value);
    isCompletingInput_ = false;
}

void CanvasInput::dismissActiveInputByUser() {
    if (!activeInput_ || std::exchange(isCompletingInput_, true))
        return;
    const auto measure = activeInput_->measureName;
    clearActiveInput();
    if (const auto answers = answers_.lock())
        answers->dismissInputText(measure);
    isCompletingInput_ = false;
}

} // namespace Ostrel
