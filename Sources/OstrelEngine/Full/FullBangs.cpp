#include "OstrelEngine/Full/FullBangs.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/Formula.h"
#include "OstrelDialect/LiteralMarks.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Full/KeyFileWriter.h"

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

template <MouseActionChange Change> void changeMouseActions(ActionHost& host, const BangArguments& arguments) {
    const auto name = arguments.text(0);
    host.changeMouseActions(named(name), arguments.text(1), Change);
}

template <MouseActionChange Change> void changeGroupMouseActions(ActionHost& host, const BangArguments& arguments) {
    const auto group = arguments.text(1);
    host.changeMouseActions({Kind::Group, trimmed(group)}, arguments.text(0), Change);
}

void writeKeyValue(ActionHost& host, const BangArguments& arguments) {
    using KeyFileWriter::Outcome;
    const auto& folders = host.folders();
    const auto file = arguments.text(3);
    const auto path = trimmed(file).empty() ? folders.skinFile : folders.absolutePath(trimmed(file));
    const auto tell = [&](std::string_view why) {
        host.log(LogLevel::Warning, arguments.section(), "!WriteKeyValue: " + path + std::string(why));
    };
    switch (KeyFileWriter::write(folders, path, arguments.text(0), arguments.text(1), arguments.text(2))) {
    case Outcome::Written:
        return;
    case Outcome::Outside:
        return tell(" is outside the pack");
    case Outcome::Missing:
        return tell(" is no file; none is made");
    case Outcome::Unwritable:
        return tell(": no line can hold this key or value");
    case Outcome::Failed:
        return tell(" cannot be written");
    }
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

void update(ActionHost& host, const BangArguments&) {
    host.update();
}

void redraw(ActionHost& host, const BangArguments&) {
    host.redraw();
}

void refresh(ActionHost& host, const BangArguments&) {
    host.host().refresh();
}

void deactivate(ActionHost& host, const BangArguments&) {
    host.host().deactivate();
}

constexpr auto Own = BangRow::NoConfig;
constexpr auto AtOnce = BangRow::Timing::AtOnce;
constexpr auto Later = BangRow::Timing::AfterScript;

// A bang's row: name, arguments that it needs, place of its config, when a script runs it, what it does.
constexpr BangRow Rows[] = {
    {"SetVariable", 2, 2, AtOnce, setVariable},
    {"SetOption", 2, 3, AtOnce, setOption<Kind::Name>},
    {"SetOptionGroup", 2, 3, AtOnce, setOption<Kind::Group>},
    {"SetVariableGroup", 3, Own, AtOnce, setVariable, 2, "SetVariable"},
    {"WriteKeyValue", 3, Own, AtOnce, writeKeyValue},

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

    {"DisableMouseAction", 2, 2, AtOnce, changeMouseActions<MouseActionChange::Disable>},
    {"DisableMouseActionGroup", 2, 2, AtOnce, changeGroupMouseActions<MouseActionChange::Disable>},
    {"DisableMouseActionSkinGroup", 2, Own, AtOnce, changeMouseActions<MouseActionChange::Disable>, 1,
        "DisableMouseAction", "Rainmeter"},
    {"EnableMouseAction", 2, 2, AtOnce, changeMouseActions<MouseActionChange::Enable>},
    {"EnableMouseActionGroup", 2, 2, AtOnce, changeGroupMouseActions<MouseActionChange::Enable>},
    {"EnableMouseActionSkinGroup", 2, Own, AtOnce, changeMouseActions<MouseActionChange::Enable>, 1,
        "EnableMouseAction", "Rainmeter"},
    {"ClearMouseAction", 2, 2, AtOnce, changeMouseActions<MouseActionChange::Clear>},
    {"ClearMouseActionGroup", 2, 2, AtOnce, changeGroupMouseActions<MouseActionChange::Clear>},
    {"ClearMouseActionSkinGroup", 2, Own, AtOnce, changeMouseActions<MouseActionChange::Clear>, 1, "ClearMouseAction",
        "Rainmeter"},
    {"ToggleMouseAction", 2, 2, AtOnce, changeMouseActions<MouseActionChange::Toggle>},
    {"ToggleMouseActionGroup", 2, 2, AtOnce, changeGroupMouseActions<MouseActionChange::Toggle>},
    {"ToggleMouseActionSkinGroup", 2, Own, AtOnce, changeMouseActions<MouseActionChange::Toggle>, 1,
        "ToggleMouseAction", "Rainmeter"},

    {"Update", 0, 0, Later, update},
    {"UpdateGroup", 1, Own, Later, update, 0, "Update"},
    {"Redraw", 0, 0, Later, redraw},
    {"RedrawGroup", 1, Own, Later, redraw, 0, "Redraw"},
    {"Refresh", 0, 0, Later, refresh},
    {"RefreshGroup", 1, Own, Later, refresh, 0, "Refresh"},
    {"RefreshApp", 0, Own, Later, [](ActionHost& host, const BangArguments&) { host.host().refreshApp(); }},
    {"DeactivateConfig", 0, 0, Later, deactivate},
    {"DeactivateConfigGroup", 1, Own, Later, deactivate, 0, "DeactivateConfig"},
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
        for (const auto& row : windowBangs())
            index.set(row.name, &row);
        return index;
    }();
    const auto* found = Index.find(name);
    return found ? *found : nullptr;
}

} // namespace Ostrel
