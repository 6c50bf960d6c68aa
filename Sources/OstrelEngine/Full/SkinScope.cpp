#include "OstrelEngine/Full/SkinScope.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelDialect/PackReader.h"
#include "OstrelEngine/Full/FullLayout.h"
#include "OstrelEngine/Full/FullMeasureTable.h"
#include "OstrelEngine/Full/SkinVariables.h"
#include "OstrelEngine/Measures/Full/ScriptHost.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace Ostrel {

namespace {

constexpr int TextDecimals = 5;
constexpr int NumberDecimals = 10;

/// "/1024,%,2" in any order; absent for any other text.
struct NumberForm {
    std::optional<int> decimals;
    std::int64_t divisor = 1;
    bool isPercent = false;
};

std::optional<std::int64_t> wholeNumber(std::string_view text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<NumberForm> parseNumberForm(std::string_view parameter) {
    constexpr std::int64_t MostDecimals = 32;
    NumberForm form;
    for (const auto item : split(parameter, ',')) {
        const auto word = trimmed(item);
        if (word == "%") {
            form.isPercent = true;
        } else if (word.starts_with('/')) {
            const auto divisor = wholeNumber(trimmed(word.substr(1)));
            if (!divisor || *divisor == 0)
                return std::nullopt;
            form.divisor = *divisor;
        } else {
            const auto decimals = wholeNumber(word);
            if (!decimals || *decimals < 0)
                return std::nullopt;
            form.decimals = static_cast<int>(std::min(*decimals, MostDecimals));
        }
    }
    return form;
}

std::string formatted(const MeasureValue& value, const NumberForm& form) {
    double number = form.isPercent ? value.percentValue() : value.numericValue;
    number /= static_cast<double>(form.divisor);
    if (form.decimals)
        return OptionValues::fixedText(number, *form.decimals);
    return form.isPercent ? OptionValues::fixedText(number, 0) : OptionValues::numberText(number, NumberDecimals);
}

std::string percentEncoded(std::string_view text) {
    constexpr std::string_view Unreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.~";
    constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        if (Unreserved.find(c) != std::string_view::npos) {
            result += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        result += '%';
        result += Digits[byte >> 4U];
        result += Digits[byte & 15U];
    }
    return result;
}

std::string escapedForPattern(std::string_view text) {
    constexpr std::string_view Special = ".^$*+?()[{|\\";
    std::string result;
    for (const char c : text) {
        if (Special.find(c) != std::string_view::npos)
            result += '\\';
        result += c;
    }
    return result;
}

/// Whether a measure that has no value yet will have a text of its own: until then its text is empty, where that of a
/// number is "0".
bool willHaveText(const BaseMeasure& measure) {
    constexpr std::array<std::string_view, 5> Types{"String", "Time", "Uptime", "WebParser", "Script"};
    const auto& type = measure.definition().measureType;
    return std::ranges::any_of(Types, [&](std::string_view name) { return equalsIgnoringCase(type, name); });
}

std::optional<double> frameSide(const MeterFrame& frame, std::string_view side) {
    if (equalsIgnoringCase(side, "X"))
        return frame.x;
    if (equalsIgnoringCase(side, "Y"))
        return frame.y;
    if (equalsIgnoringCase(side, "W"))
        return frame.w;
    if (equalsIgnoringCase(side, "H"))
        return frame.h;
    if (equalsIgnoringCase(side, "XW"))
        return frame.x + frame.w;
    if (equalsIgnoringCase(side, "YH"))
        return frame.y + frame.h;
    return std::nullopt;
}

} // namespace

std::string measureText(const MeasureValue& value) {
    if (value.preferStringValue || !value.stringValue.empty())
        return value.stringValue;
    auto text = OptionValues::numberText(value.numericValue, TextDecimals);
    return value.textRule ? value.textRule->apply(text) : text;
}

SkinScope::SkinScope(
    const SkinVariables& variables, const FullMeasureTable& measures, FullLayout& layout, const PackFolders& folders)
    : variables_(variables)
    , measures_(measures)
    , layout_(layout)
    , folders_(folders) { }

std::optional<std::string> SkinScope::variable(std::string_view name) const {
    using Kind = ReferenceDependencies::Item::Kind;
    const auto position = variables_.position(name);
    if (!position) {
        note(Kind::UnknownName, 0, variables_.namesRevision());
        return std::nullopt;
    }
    note(Kind::Variable, *position, variables_.revision(*position));
    return variables_.raw(*position);
}

std::optional<std::string> SkinScope::section(std::string_view name, std::optional<std::string_view> parameter) const {
    using Kind = ReferenceDependencies::Item::Kind;
    if (const auto position = measures_.position(name)) {
        note(Kind::Measure, *position, measures_.at(*position).valueRevision());
        return measureReference(*position, parameter);
    }
    if (!parameter)
        return std::nullopt;
    const auto position = layout_.meters().position(name);
    if (!position)
        return std::nullopt;
    note(Kind::Meter, *position, layout_.revision(*position));
    const auto side = frameSide(layout_.frame(*position), trimmed(*parameter));
    return side ? std::optional(OptionValues::numberText(*side, 0)) : std::nullopt;
}

std::optional<std::string> SkinScope::measureReference(
    std::size_t position, std::optional<std::string_view> parameter) const {
    auto& measure = measures_.at(position);
    const auto& value = measure.value();
    if (!parameter)
        return measure.valueRevision() == 0 && willHaveText(measure) ? std::string() : measureText(value);
    const auto word = trimmed(*parameter);
    if (word.empty())
        return OptionValues::numberText(value.numericValue, NumberDecimals);
    if (const auto form = parseNumberForm(word))
        return formatted(value, *form);
    if (equalsIgnoringCase(word, "MinValue"))
        return OptionValues::numberText(value.minValue, NumberDecimals);
    if (equalsIgnoringCase(word, "MaxValue"))
        return OptionValues::numberText(value.maxValue, NumberDecimals);
    if (equalsIgnoringCase(word, "EncodeURL"))
        return percentEncoded(measureText(value));
    if (equalsIgnoringCase(word, "EscapeRegExp"))
        return escapedForPattern(measureText(value));
    if (equalsIgnoringCase(word, "Timestamp")) {
        noteVolatile();
        const auto seconds = measure.timeStamp();
        return seconds ? std::optional(OptionValues::numberText(*seconds, NumberDecimals)) : std::nullopt;
    }
    if (auto* script = measure.script()) {
        noteVolatile();
        return script->globalText(word);
    }
    return std::nullopt;
}

std::optional<std::string> SkinScope::call(
    std::string_view measure, std::string_view function, const std::vector<std::string>& arguments) const {
    auto* const found = measures_.find(measure);
    auto* const script = found ? found->script() : nullptr;
    if (!script)
        return std::nullopt;
    noteVolatile();
    // The script may make the skin resolve other texts meanwhile.
    auto* const recorded = std::exchange(recorded_, nullptr);
    auto text = script->callFunction(function, arguments);
    recorded_ = recorded;
    return text;
}

std::optional<std::string> SkinScope::event(std::string_view name) const {
    return events_ ? events_->value(name) : std::nullopt;
}

std::optional<std::string> SkinScope::environment(std::string_view name) const {
    return PackVariables(variables_.own(), folders_).environment(name);
}

void SkinScope::note(ReferenceDependencies::Item::Kind kind, std::size_t position, std::uint64_t revision) const {
    if (!recorded_)
        return;
    // A text that a variable made long depends on too much to be worth comparing.
    constexpr std::size_t MostItems = 1000;
    if (recorded_->items.size() < MostItems)
        recorded_->items.push_back({kind, position, revision});
    else
        recorded_->isVolatile = true;
}

void SkinScope::noteVolatile() const {
    if (recorded_)
        recorded_->isVolatile = true;
}

std::string SkinScope::resolve(const ReferenceText& text, std::string_view section, ReferenceKinds kinds,
    ReferenceDependencies& dependencies) const {
    dependencies.clear();
    auto* const outer = std::exchange(recorded_, &dependencies);
    auto result = text.resolve(*this, section, kinds);
    recorded_ = outer;
    return result;
}

bool SkinScope::isCurrent(const ReferenceDependencies& dependencies) const {
    using Kind = ReferenceDependencies::Item::Kind;
    if (dependencies.isVolatile)
        return false;
    return std::ranges::all_of(dependencies.items, [this](const ReferenceDependencies::Item& item) {
        switch (item.kind) {
        case Kind::Variable:
            return variables_.revision(item.position) == item.revision;
        case Kind::UnknownName:
            return variables_.namesRevision() == item.revision;
        case Kind::Measure:
            return measures_.at(item.position).valueRevision() == item.revision;
        case Kind::Meter:
            return layout_.revision(item.position) == item.revision;
        }
        return false;
    });
}

std::string SkinScope::resolveNow(
    std::string_view text, std::string_view section, ReferenceKinds kinds, const EventValues* events) const {
    auto* const recorded = std::exchange(recorded_, nullptr);
    const auto* const outer = std::exchange(events_, events);
    auto result = resolveReferences(text, *this, section, kinds);
    events_ = outer;
    recorded_ = recorded;
    return result;
}

} // namespace Ostrel
