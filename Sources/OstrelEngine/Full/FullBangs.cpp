#include "OstrelEngine/Full/FullBangs.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/Formula.h"
#include "OstrelDialect/LiteralMarks.h"
#include "OstrelDialect/OptionValues.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

namespace {

using Kind = SectionChoice::Kind;

/// One section by name, or all with "*".
SectionChoice named(std::string_view name) {
    return trimmed(name) == "*" ? SectionChoice{Kind::All, {}} : SectionChoice{Kind::Name, trimmed(name)};
}

void setVariable(ActionHost& host, const BangArguments& arguments) {
    host.setVariable(trimmed(arguments.text(0)), arguments.computed(1));
}

template <Kind Choice> void setOption(ActionHost& host, const BangArguments& arguments) {
    const auto section = arguments.text(0);
    host.setOption({Choice, trimmed(section)}, arguments.text(1), arguments.stored(2));
}

template <Kind Choice, Switch Shown> void switchMeters(ActionHost& host, const BangArguments& arguments) {
    const auto name = arguments.text(0);
    host.switchMeters({Choice, trimmed(name)}, Shown);
}

template <Kind Choice, Switch Enabled> void switchMeasures(ActionHost& host, const BangArguments& arguments) {
    const auto name = arguments.text(0);
    host.switchMeasures({Choice, trimmed(name)}, Enabled);
}

template <Kind Choice, Switch Paused> void pauseMeasures(ActionHost& host, const BangArguments& arguments) {
    const auto name = arguments.text(0);
    host.pauseMeasures({Choice, trimmed(name)}, Paused);
}

void updateMeter(ActionHost& host, const BangArguments& arguments) {
    const auto name = arguments.text(0);
    host.updateMeters(named(name));
}

void updateMeterGroup(ActionHost& host, const BangArguments& arguments) {
    const auto group = arguments.text(0);
    host.updateMeters({Kind::Group, trimmed(group)});
}

void updateMeasure(ActionHost& host, const BangArguments& arguments) {
    const auto name = arguments.text(0);
    host.updateMeasures(named(name));
}

void updateMeasureGroup(ActionHost& host, const BangArguments& arguments) {
    const auto group = arguments.text(0);
    host.updateMeasures({Kind::Group, trimmed(group)});
}

void moveMeter(ActionHost& host, const BangArguments& arguments) {
    const auto name = arguments.text(2);
    host.moveMeter(trimmed(name), arguments.number(0, 0), arguments.number(1, 0));
}

void commandMeasure(ActionHost& host, const BangArguments& arguments) {
    const auto name = arguments.text(0);
    host.commandMeasure(trimmed(name), arguments.text(1));
}

/// The old form: name and command in one argument.
void pluginBang(ActionHost& host, const BangArguments& arguments) {
    const auto whole = arguments.text(0);
    const auto text = trimmed(whole);
    const auto blank = text.find(' ');
    if (blank != std::string_view::npos)
        host.commandMeasure(text.substr(0, blank), trimmed(text.substr(blank + 1)));
    else
        host.commandMeasure(text, arguments.text(1));
}

void log(ActionHost& host, const BangArguments& arguments) {
    const auto level = arguments.text(1);
    auto value = LogLevel::Notice;
    if (equalsIgnoringCase(level, "Error"))
        value = LogLevel::Error;
    else if (equalsIgnoringCase(level, "Warning"))
        value = LogLevel::Warning;
    else if (equalsIgnoringCase(level, "Debug"))
        value = LogLevel::Debug;
    host.host().log(value, arguments.section(), arguments.text(0));
}

constexpr auto Own = BangRow::NoConfig;
constexpr auto AtOnce = BangRow::Timing::AtOnce;
constexpr auto Later = BangRow::Timing::AfterScript;

// A bang's row: name, arguments that it needs, place of its config, when a script runs it, what it does.
constexpr BangRow Rows[] = {
    {"SetVariable", 2, 2, AtOnce, setVariable},
    {"SetOption", 2, 3, AtOnce, setOption<Kind::Name>},
    {"SetOptionGroup", 2, 3, AtOnce, setOption<Kind::Group>},

    {"ShowMeter", 1, 1, AtOnce, switchMeters<Kind::Name, Switch::On>},
    {"HideMeter", 1, 1, AtOnce, switchMeters<Kind::Name, Switch::Off>},
    {"ToggleMeter", 1, 1, AtOnce, switchMeters<Kind::Name, Switch::Toggle>},
    {"ShowMeterGroup", 1, 1, AtOnce, switchMeters<Kind::Group, Switch::On>},
    {"HideMeterGroup", 1, 1, AtOnce, switchMeters<Kind::Group, Switch::Off>},
    {"ToggleMeterGroup", 1, 1, AtOnce, switchMeters<Kind::Group, Switch::Toggle>},
    {"MoveMeter", 3, 3, AtOnce, moveMeter},
    {"UpdateMeter", 1, 1, Later, updateMeter},
    {"UpdateMeterGroup", 1, 1, Later, updateMeterGroup},

    {"EnableMeasure", 1, 1, AtOnce, switchMeasures<Kind::Name, Switch::On>},
    {"DisableMeasure", 1, 1, AtOnce, switchMeasures<Kind::Name, Switch::Off>},
    {"ToggleMeasure", 1, 1, AtOnce, switchMeasures<Kind::Name, Switch::Toggle>},
    {"EnableMeasureGroup", 1, 1, AtOnce, switchMeasures<Kind::Group, Switch::On>},
    {"DisableMeasureGroup", 1, 1, AtOnce, switchMeasures<Kind::Group, Switch::Off>},
    {"ToggleMeasureGroup", 1, 1, AtOnce, switchMeasures<Kind::Group, Switch::Toggle>},
    {"PauseMeasure", 1, 1, AtOnce, pauseMeasures<Kind::Name, Switch::On>},
    {"UnpauseMeasure", 1, 1, AtOnce, pauseMeasures<Kind::Name, Switch::Off>},
    {"TogglePauseMeasure", 1, 1, AtOnce, pauseMeasures<Kind::Name, Switch::Toggle>},
    {"PauseMeasureGroup", 1, 1, AtOnce, pauseMeasures<Kind::Group, Switch::On>},
    {"UnpauseMeasureGroup", 1, 1, AtOnce, pauseMeasures<Kind::Group, Switch::Off>},
    {"TogglePauseMeasureGroup", 1, 1, AtOnce, pauseMeasures<Kind::Group, Switch::Toggle>},
    {"UpdateMeasure", 1, 1, Later, updateMeasure},
    {"UpdateMeasureGroup", 1, 1, Later, updateMeasureGroup},
    {"CommandMeasure", 2, 2, Later, commandMeasure},
    {"PluginBang", 1, Own, Later, pluginBang},

    {"Update", 0, 0, Later, [](ActionHost& host, const BangArguments&) { host.update(); }},
    {"Redraw", 0, 0, Later, [](ActionHost& host, const BangArguments&) { host.redraw(); }},
    {"Refresh", 0, 0, Later, [](ActionHost& host, const BangArguments&) { host.host().refresh(); }},
    {"RefreshApp", 0, Own, Later, [](ActionHost& host, const BangArguments&) { host.host().refreshApp(); }},
    {"DeactivateConfig", 0, 0, Later, [](ActionHost& host, const BangArguments&) { host.host().deactivate(); }},
    {"Log", 1, Own, AtOnce, log},
};

} // namespace

std::string BangArguments::text(std::size_t index) const {
    return LiteralMarks::dropped(stored(index));
}

std::string_view BangArguments::stored(std::size_t index) const {
    return index < arguments_.size() ? std::string_view(arguments_[index].text) : std::string_view();
}

std::optional<double> BangArguments::formula(std::size_t index) const {
    if (index >= arguments_.size() || arguments_[index].isLiteral || !OptionValues::isInParentheses(stored(index)))
        return std::nullopt;
    const auto formula = Formula::compile(text(index), &names_);
    return formula ? formula->evaluate(&names_) : std::nullopt;
}

std::string BangArguments::computed(std::size_t index) const {
    constexpr int Decimals = 10;
    const auto value = formula(index);
    return value ? OptionValues::numberText(*value, Decimals) : std::string(stored(index));
}

double BangArguments::number(std::size_t index, double fallback) const {
    if (const auto value = formula(index))
        return *value;
    return OptionValues::number(text(index)).value_or(fallback);
}

const BangRow* findFullBang(std::string_view name) {
    static const auto Index = [] {
        CaseInsensitiveDictionary<const BangRow*> index;
        for (const auto& row : Rows)
            index.set(row.name, &row);
        return index;
    }();
    const auto* found = Index.find(name);
    return found ? *found : nullptr;
}

} // namespace Ostrel
