#include "OstrelEngine/Full/FullMeasureActions.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Full/SkinScope.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <utility>

namespace Ostrel {

namespace {

/// The number of a key like "IfMatch12" after its name, 1 without one. Absent for another key; "IfMatch1" is none.
std::optional<int> blockNumber(std::string_view key, std::string_view name) {
    if (key.size() < name.size() || !equalsIgnoringCase(key.substr(0, name.size()), name))
        return std::nullopt;
    const auto digits = key.substr(name.size());
    if (digits.empty())
        return 1;
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isNumber = error == std::errc() && end == digits.data() + digits.size() && digits[0] != '0';
    return isNumber && number > 1 ? std::optional(number) : std::nullopt;
}

std::string numbered(std::string_view name, int number) {
    return number == 1 ? std::string(name) : std::string(name) + formatInteger(number);
}

std::string textOf(const Options& options, std::string_view key) {
    const auto* text = options.find(key);
    return text ? *text : std::string();
}

bool isOn(const Options& options, const CaseKey& key) {
    return OptionValues::isOn(option(options, key).value_or("")).value_or(false);
}

} // namespace

void MeasureActionState::Crossing::read(const Options& options, const CaseKey& value, const CaseKey& actionKey) {
    limit = OptionValues::number(option(options, value).value_or(""));
    action = option(options, actionKey).value_or("");
}

void MeasureActionState::read(const BaseMeasure& measure, MeasureActionHost& host) {
    if (optionsRevision_ == measure.optionsRevision())
        return;
    optionsRevision_ = measure.optionsRevision();
    const auto& options = measure.options();
    equal_.read(options, "IfEqualValue"_key, "IfEqualAction"_key);
    above_.read(options, "IfAboveValue"_key, "IfAboveAction"_key);
    below_.read(options, "IfBelowValue"_key, "IfBelowAction"_key);
    readBlocks(conditions_, measure, "IfCondition", "IfTrueAction", "IfFalseAction");
    readBlocks(matches_, measure, "IfMatch", "IfMatchAction", "IfNotMatchAction");
    for (auto& block : conditions_) {
        if (!block.condition)
            block.condition = Formula::compile(block.text, &host.measureNames());
        if (!block.condition)
            host.logMeasure(measure, "The condition is invalid: " + block.text);
    }
    for (auto& block : matches_) {
        std::string error;
        if (!block.pattern)
            block.pattern = PerlRegularExpression::compile(block.text, &error);
        if (!block.pattern)
            host.logMeasure(measure, "The pattern is invalid: " + block.text + ": " + error);
    }
    everyCondition_ = isOn(options, "IfConditionMode"_key);
    everyMatch_ = isOn(options, "IfMatchMode"_key);
    onUpdate_ = option(options, "OnUpdateAction"_key).value_or("");
    onChange_ = option(options, "OnChangeAction"_key).value_or("");
}

void MeasureActionState::readBlocks(Blocks& blocks, const BaseMeasure& measure, std::string_view name,
    std::string_view whenTrue, std::string_view whenFalse) {
    auto before = std::exchange(blocks, {});
    const auto& options = measure.options();
    for (const auto& [key, text, hash] : options) {
        const auto number = blockNumber(key, name);
        if (!number || text.empty())
            continue;
        const auto old = std::ranges::find(before, *number, &Block::number);
        auto& block = blocks.emplace_back(old != before.end() ? std::move(*old) : Block());
        block.number = *number;
        if (block.text != text) {
            block.text = text;
            block.condition.reset();
            block.pattern.reset();
        }
        block.whenTrue = textOf(options, numbered(whenTrue, *number));
        block.whenFalse = textOf(options, numbered(whenFalse, *number));
    }
    std::ranges::sort(blocks, {}, &Block::number);
}

void MeasureActionState::cross(
    Crossing MeasureActionState::*crossing, bool holds, const BaseMeasure& measure, MeasureActionHost& host) {
    auto& state = this->*crossing;
    const bool runs = holds && !state.hasRun;
    state.hasRun = holds;
    if (runs && !state.action.empty())
        host.runMeasureAction(measure, std::string(state.action));
}

void MeasureActionState::runBlock(Blocks& blocks, std::size_t index, std::optional<bool> result, bool everyTime,
    const BaseMeasure& measure, MeasureActionHost& host) {
    if (!result)
        return;
    auto& block = blocks[index];
    const bool runs = everyTime || block.lastResult != result;
    block.lastResult = result;
    const std::string action = *result ? block.whenTrue : block.whenFalse;
    if (runs && !action.empty())
        host.runMeasureAction(measure, action);
}

void MeasureActionState::run(const BaseMeasure& measure, MeasureActionHost& host) {
    read(measure, host);
    const double number = measure.value().numericValue;
    const auto& text = measure.value().stringValue;
    const bool hasChanged = lastNumber_ && (*lastNumber_ != number || lastText_ != text);
    lastNumber_ = number;
    if (lastText_ != text)
        lastText_ = text;

    if (equal_.limit)
        cross(&MeasureActionState::equal_, std::round(number) == std::round(*equal_.limit), measure, host);
    if (above_.limit)
        cross(&MeasureActionState::above_, number > *above_.limit, measure, host);
    if (below_.limit)
        cross(&MeasureActionState::below_, number < *below_.limit, measure, host);
    // By index: an action may have the options read again.
    for (std::size_t i = 0; i < conditions_.size(); ++i) {
        const auto& condition = conditions_[i].condition;
        const auto value = condition ? condition->evaluate(&host.measureNames()) : std::nullopt;
        if (condition && !value)
            host.logMeasure(measure, "The condition has no result: " + conditions_[i].text);
        runBlock(conditions_, i, value ? std::optional(*value != 0) : std::nullopt, everyCondition_, measure, host);
    }
    for (std::size_t i = 0; i < matches_.size(); ++i) {
        const auto& pattern = matches_[i].pattern;
        const auto result = pattern ? std::optional(pattern->matches(measureText(measure.value()))) : std::nullopt;
        runBlock(matches_, i, result, everyMatch_, measure, host);
    }
    if (!onUpdate_.empty())
        host.runMeasureAction(measure, std::string(onUpdate_));
    if (hasChanged && !onChange_.empty())
        host.runMeasureAction(measure, std::string(onChange_));
}

void MeasureActionState::optionWasSet(std::string_view key) {
    const auto belongs = [&](std::string_view value, std::string_view action) {
        return equalsIgnoringCase(key, value) || equalsIgnoringCase(key, action);
    };
    if (belongs("IfEqualValue", "IfEqualAction"))
        equal_.hasRun = false;
    if (belongs("IfAboveValue", "IfAboveAction"))
        above_.hasRun = false;
    if (belongs("IfBelowValue", "IfBelowAction"))
        below_.hasRun = false;
    const auto forget = [&](Blocks& blocks, std::initializer_list<std::string_view> names) {
        for (const auto name : names) {
            const auto number = blockNumber(key, name);
            for (auto& block : blocks) {
                if (number == block.number)
                    block.lastResult.reset();
            }
        }
    };
    forget(conditions_, {"IfCondition", "IfTrueAction", "IfFalseAction"});
    forget(matches_, {"IfMatch", "IfMatchAction", "IfNotMatchAction"});
}

void MeasureActionState::forgetMarks() {
    for (auto* crossing : {&equal_, &above_, &below_})
        crossing->hasRun = false;
    for (auto* blocks : {&conditions_, &matches_}) {
        for (auto& block : *blocks)
            block.lastResult.reset();
    }
}

} // namespace Ostrel
