#pragma once

#include "OstrelEngine/Geometry.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// How the field looks; the host's own look where a part is left out.
struct InputTextStyle {
    enum class Align { Left, Center, Right };
    /// Red, green, blue, opacity, 0 to 255.
    using Color = std::array<std::uint8_t, 4>;

    std::string fontFace;
    /// Points at 96 dots an inch; 0 for the host's.
    double fontSize = 0;
    std::optional<Color> fontColor;
    /// Its opacity is that of the whole field.
    std::optional<Color> fillColor;
    Align align = Align::Left;
    bool isBold = false;
    bool isItalic = false;

    friend bool operator==(const InputTextStyle&, const InputTextStyle&) = default;
};

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
    InputTextStyle style;

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
