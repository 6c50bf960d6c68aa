#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class BaseMeasure;
class MeasureHost;

/// The text of a formula with the names of measures found in it. Their numbers are put into the text as text, before
/// anything is parsed, so that `1e-Cpu` or a measure named like a function mean what the letters then say.
class CalcFormula {
public:
    /// Without an owner no name stands for a measure. With one, the formula must not be updated after it is gone.
    explicit CalcFormula(std::string_view text = "0", const MeasureHost* host = nullptr);

    /// Evaluates anew when the number of a measure changed, and the first time; tells whether it did.
    bool update();
    /// As last evaluated; 0 when the formula is invalid.
    double value() const { return value_; }

private:
    /// A name in the text, and the measure whose number goes there.
    struct Slot {
        std::size_t start = 0;
        std::size_t end = 0;
        const BaseMeasure* measure = nullptr;
        std::uint64_t seenRevision = 0;
    };

    const std::string& substitutedText();

    std::string text_;
    std::vector<Slot> slots_;
    /// Kept between updates for its capacity.
    std::string buffer_;
    bool isEvaluated_ = false;
    double value_ = 0;
};

} // namespace Ostrel
