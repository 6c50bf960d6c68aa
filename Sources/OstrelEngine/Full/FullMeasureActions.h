#pragma once

#include "OstrelDialect/Formula.h"
#include "OstrelDialect/PerlRegularExpression.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What the actions of measures need of their skin.
class MeasureActionHost {
public:
    virtual ~MeasureActionHost() = default;
    virtual const FormulaNames& measureNames() const = 0;
    virtual void runMeasureAction(const BaseMeasure& measure, std::string_view action) = 0;
    virtual void logMeasure(const BaseMeasure& measure, std::string_view text) = 0;
};

/// The actions of a measure, parsed from its options, and which of them have run for what holds now.
class MeasureActionState {
public:
    /// To be called after each update of the measure: runs IfEqual, IfAbove, IfBelow, conditions, matches,
    /// OnUpdateAction and OnChangeAction, in this order. Actions may update the same measure meanwhile.
    void run(const BaseMeasure& measure, MeasureActionHost& host);

    /// A bang has set this option: the block that it belongs to begins again.
    void optionWasSet(std::string_view key);
    /// The measure was enabled: everything that holds runs again.
    void forgetMarks();

private:
    /// Runs once when its test begins to hold.
    struct Crossing {
        std::optional<double> limit;
        std::string action;
        bool hasRun = false;

        void read(const Options& options, const CaseKey& value, const CaseKey& actionKey);
    };
    /// IfCondition or IfMatch of one number with its two actions.
    struct Block {
        int number = 1;
        std::string text;
        std::optional<Formula> condition;
        std::optional<PerlRegularExpression> pattern;
        std::string whenTrue;
        std::string whenFalse;
        std::optional<bool> lastResult;
    };
    using Blocks = std::vector<Block>;

    void read(const BaseMeasure& measure, MeasureActionHost& host);
    void readBlocks(Blocks& blocks, const BaseMeasure& measure, std::string_view name, std::string_view whenTrue,
        std::string_view whenFalse);
    void cross(Crossing MeasureActionState::*crossing, bool holds, const BaseMeasure& measure, MeasureActionHost& host);
    void runBlock(Blocks& blocks, std::size_t index, std::optional<bool> result, bool everyTime,
        const BaseMeasure& measure, MeasureActionHost& host);

    std::optional<std::uint64_t> optionsRevision_;
    Crossing equal_;
    Crossing above_;
    Crossing below_;
    Blocks conditions_;
    Blocks matches_;
    bool everyCondition_ = false;
    bool everyMatch_ = false;
    std::string onUpdate_;
    std::string onChange_;
    /// The value that OnChangeAction compares with; absent until there was one.
    std::optional<double> lastNumber_;
    std::string lastText_;
};

} // namespace Ostrel
