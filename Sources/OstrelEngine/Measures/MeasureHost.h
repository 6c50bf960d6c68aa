#pragma once

#include <optional>
#include <string_view>

namespace Ostrel {

class BaseMeasure;
struct InputTextPresentation;

/// What a measure may ask of its skin. Outlives the measure. Main thread.
class MeasureHost {
public:
    virtual ~MeasureHost() = default;

    /// Null when there is none of that name, which may be in any case. The measures stay for the life of the skin, so
    /// that one may look another up once and keep it, but only when all exist: not in a constructor.
    virtual BaseMeasure* measure(std::string_view name) const = 0;
    /// Runs an action string as that measure's before it returns; the action may come back to the very measure.
    virtual void runAction(const BaseMeasure& measure, std::string_view action) = 0;
    /// Shows the input field, whose answer comes to the measure that the presentation names; absent dismisses it. A
    /// host without a field shows none.
    virtual void promptInput(const std::optional<InputTextPresentation>&) { }
};

} // namespace Ostrel
