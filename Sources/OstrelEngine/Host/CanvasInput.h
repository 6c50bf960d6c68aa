#pragma once

#include "OstrelEngine/Actions/PointerRules.h"
#include "OstrelEngine/Measures/InputTextPresentation.h"

#include <memory>
#include <optional>
#include <string>

namespace Ostrel {

/// Where the input field is to be seen.
class InputFieldView {
public:
    virtual ~InputFieldView() = default;
    /// The field that is to be seen from now on; absent for none.
    virtual void showField(const std::optional<InputTextPresentation>& presentation) = 0;
};

/// What the user does to a widget: the open input field comes first, and the rest goes by the pointer rules of the
/// skin. Knows no window and no toolkit. Main thread.
class CanvasInput {
public:
    /// Until then the pointer does nothing. The answers of the field go to `answers` while it lives.
    void connect(std::unique_ptr<PointerRules> rules, std::weak_ptr<InputAnswers> answers);
    /// The view outlives this, or takes itself away by null.
    void setFieldView(InputFieldView* view) { fieldView_ = view; }

    void mouseMoved(Point point);
    void mouseExited();
    Press mouseDown(Point point, const PointerPress& press = {});
    void mouseDragged(Point point);
    /// The press has become a move of the window.
    void windowWillMove();
    void mouseUp(Point point, PointerButton button = PointerButton::left);
    /// False when nothing here had an action for it.
    bool scrollWheel(const ScrollEvent& event);

    /// Shows the field, in place of one that is open; absent closes it and tells nobody.
    void promptInput(const std::optional<InputTextPresentation>& presentation);
    /// The open field, if any.
    const std::optional<InputTextPresentation>& activeInput() const { return activeInput_; }
    /// Return and Escape in the field.
    void submitActiveInput(const std::string& value);
    void dismissActiveInputByUser();

private:
    void clearActiveInput();
    void showField();

    std::unique_ptr<PointerRules> rules_;
    std::weak_ptr<InputAnswers> answers_;
    InputFieldView* fieldView_ = nullptr;
    std::optional<InputTextPresentation> activeInput_;
    /// Closing a field can make a toolkit report its end once more.
    bool isCompletingInput_ = false;
};

} // namespace Ostrel
