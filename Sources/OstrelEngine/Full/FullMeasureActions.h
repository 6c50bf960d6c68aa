#pragma once

#include "OstrelDialect/Formula.h"
#include "OstrelDialect/PerlRegularExpression.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The actions of a measure, parsed from its options, and which of them have run for what holds now.
class MeasureActionState {
public:
    /// A bang has set this option: the block that it belongs to may run again.
    void optionWasSet(std::string_view key);
    /// The measure was enabled: everything that holds runs again.
    void forgetMarks();

private:
    friend class MeasureActionRun;

    /// Runs once when its test begins to hold.
    struct Crossing {
        std::optional<double> limit;
        std::string action;
        bool hasRun = false;
    };
    /// IfCondition, IfTrueAction, IfFalseAction, or IfMatch with its pair.
    struct Block {
        int number = 1;
        std::string text;
        std::optional<Formula> condition;
        std::optional<PerlRegularExpression> pattern;
        std::string whenTrue;
        std::string whenFalse;
        std::optional<bool> lastResult;
    };

    std::uint64_t optionsRevision_ = ~std::uint64_t(0);
    Crossing equal_;
    Crossing above_;
    Crossing below_;
    std::vector<Block> conditions_;
    std::vector<Block> matches_;
    bool everyCondition_ = false;
    bool everyMatch_ = false;
    std::string onUpdate_;
    std::string onChange_;
    /// The value that OnChangeAction compares with; absent until the first.
    std::optional<double> lastNumber_;
    std::string lastText_;
};

/// What the actions of measures need of their skin.
class MeasureActionHost {
public:
    virtual ~MeasureActionHost() = default;
    virtual const FormulaNames& measureNames() const = 0;
    virtual void runMeasureAction(const BaseMeasure& measure, std::string_view action) = 0;
    virtual void logMeasure(const BaseMeasure& measure, std::string_view text) = 0;
};

/// Runs what the options of a measure ask for after an update of it: IfEqual, IfAbove, IfBelow, conditions, matches,
/// OnUpdateAction, OnChangeAction. The state may change under it, since actions may update the same measure.
void runMeasureActions(MeasureActionState& state, const BaseMeasure& measure, MeasureActionHost& host);

} // namespace Ostrel
