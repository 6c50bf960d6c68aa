#pragma once

#include "OstrelEngine/Geometry.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// What a measure asks the widget's host to show: a field for one line of text.
struct InputTextPresentation {
    std::string measureName;
    /// Widget coordinates.
    Rect frame;
    /// Shown at first.
    std::string defaultValue;
    /// Losing the focus, a click outside included, dismisses the field.
    bool focusDismiss = true;
    bool isPassword = false;
    /// The most characters, above 0; absent without a limit.
    std::optional<std::int64_t> inputLimit;
    bool numericOnly = false;

    friend bool operator==(const InputTextPresentation&, const InputTextPresentation&) = default;
};

/// Who gets the answer of the field that a measure asked for.
class InputAnswers {
public:
    virtual ~InputAnswers() = default;
    virtual void submitInputText(std::string_view measureName, std::string_view value) = 0;
    /// The field ends without an answer.
    virtual void dismissInputText(std::string_view measureName) = 0;
};

} // namespace Ostrel
