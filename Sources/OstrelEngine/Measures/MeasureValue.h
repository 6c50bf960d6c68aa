#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace Ostrel {

/// What turns the formatted text of a number into the text that is shown.
class TextRule {
public:
    virtual ~TextRule() = default;
    virtual std::string apply(std::string_view text) const = 0;
};

/// What a measure yields: a number with its range, and a text form.
struct MeasureValue {
    double numericValue = 0;
    std::string stringValue;
    /// Consumers show the text rather than the number.
    bool preferStringValue = false;
    double minValue = 0;
    double maxValue = 100;
    /// For a number without a text of its own: acts on what a consumer makes of it. Null for none.
    std::shared_ptr<const TextRule> textRule = nullptr;

    /// 0 to 100; 0 when the range is empty.
    double percentValue() const;
    double percentFraction() const { return percentValue() / 100; }

    /// NaN is unequal to itself, so a value that holds one counts as changed on every tick.
    friend bool operator==(const MeasureValue&, const MeasureValue&) = default;
};

} // namespace Ostrel
