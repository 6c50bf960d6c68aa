#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class BaseMeasure;
class MeasureTable;
class RuntimeExpressions;

/// An expression of option text that is asked for again and again: it is evaluated anew only when a measure that it
/// names has changed. One with variables is evaluated every time.
class LiveExpression {
public:
    /// The measures must outlive this.
    LiveExpression(std::string_view text, const MeasureTable& measures);

    /// Absent when the text has no value at the moment.
    std::optional<double> value(RuntimeExpressions& expressions);

private:
    struct Source {
        const BaseMeasure* measure = nullptr;
        std::uint64_t revision = 0;
    };

    bool isStale();

    std::string text_;
    std::vector<Source> sources_;
    bool hasVariables_;
    bool isEvaluated_ = false;
    std::optional<double> value_;
};

} // namespace Ostrel
