#include "OstrelEngine/Actions/BangOperations.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Actions/ActionGrammar.h"
#include "OstrelEngine/Actions/ActionProgram.h"
#include "OstrelEngine/Actions/INIFileWriter.h"
#include "OstrelEngine/Actions/MeasureActions.h"
#include "OstrelEngine/Measures/CalcMeasure.h"
#include "OstrelEngine/Runtime/ExpressionText.h"
#include "OstrelEngine/Runtime/GroupIndex.h"
#include "OstrelEngine/Runtime/LiveOptions.h"
#include "OstrelEngine/Runtime/MeasureTable.h"
#include "OstrelEngine/Runtime/MeterTable.h"
#include "OstrelEngine/Runtime/Publication.h"
#include "OstrelEngine/Runtime/RuntimeExpressions.h"
#include "OstrelEngine/Runtime/SkinHost.h"
#include "OstrelPlatform/Workspace.h"

namespace Ostrel {

namespace {

void enable(MeasureControlState& state) {
    state.forcedDisabled = false;
    state.forcedEnabled = true;
}

void disable(MeasureControlState& state) {
    state.forcedDisabled = true;
    state.forcedEnabled = false;
}

void pause(MeasureControlState& state) {
    state.paused = true;
}

void unpause(MeasureControlState& state) {
    state.paused = false;
}

} // namespace

BangOperations::BangOperations(
    const SkinParts& parts, SkinHost& host, LiveOptions& options, GroupIndex& groups, MeasureActions& measureActions)
    : parts_(parts)
    , targets_(parts.skinPath, parts.variables)
    , host_(host)
    , options_(options)
    , groups_(groups)
    , measureActions_(measureActions) { }

std::optional<bool> BangOperations::perform(const ActionStep& step) {
    const auto& words = step.words;
    if (words.size() < step.bang->requiredWords)
        return std::nullopt;
    switch (step.bang->bang) {
    case Bang::showMeter:
        return options_.setMeterVisible(words[0], true);
    case Bang::hideMeter:
        return options_.setMeterVisible(words[0], false);
    case Bang::toggleMeter:
        return options_.setMeterVisible(words[0], !parts_.meters.isVisible(words[0]));
    case Bang::showMeterGroup:
        return setGroupVisible(words[0], true);
    case Bang::hideMeterGroup:
        return setGroupVisible(words[0], false);
    case Bang::updateMeasure:
        return updateMeasure(words[0]);
    case Bang::updateMeasureGroup:
        return updateMeasureGroup(words[0]);
    case Bang::writeKeyValue:
        return writeKeyValue(step);
    case Bang::setVariable:
        return setVariable(step);
    case Bang::setOption:
        return options_.setOption(words[0], words[1], resolveBangValue(words[2]));
    case Bang::setOptionGroup:
        return options_.setOptionOfGroup(words[0], words[1], resolveBangValue(words[2]));
    case Bang::deactivateConfig:
        deactivateConfig(step);
        break;
    case Bang::activateConfig:
        activateConfig(step, false);
        break;
    case Bang::toggleConfig:
        activateConfig(step, true);
        break;
    case Bang::commandMeasure:
        commandMeasure(step.arguments);
        break;
    case Bang::pluginBang:
        pluginBang(step.arguments);
        break;
    case Bang::enableMeasure:
        control(words[0], enable);
        break;
    case Bang::disableMeasure:
        control(words[0], disable);
        break;
    case Bang::pauseMeasure:
        control(words[0], pause);
        break;
    case Bang::unpauseMeasure:
        control(words[0], unpause);
        break;
    case Bang::enableMeasureGroup:
        controlGroup(words[0], enable);
        break;
    case Bang::disableMeasureGroup:
        controlGroup(words[0], disable);
        break;
    case Bang::pauseMeasureGroup:
        controlGroup(words[0], pause);
        break;
    case Bang::unpauseMeasureGroup:
        controlGroup(words[0], unpause);
        break;
    case Bang::refresh:
        if (!words.empty() && words[0] == "*")
            host_.refreshApp();
        else
            host_.refresh();
        break;
    case Bang::refreshApp:
        host_.refreshApp();
        break;
    case Bang::redraw:
    case Bang::ignore:
        break;
    }
    return true;
}

bool BangOperations::setGroupVisible(std::string_view group, bool isVisible) {
    bool changed = false;
    for (const auto position : groups_.meterIndices(group)) {
        if (options_.setMeterVisible(parts_.meters.at(position).name(), isVisible))
            changed = true;
    }
    return changed;
}

std::string BangOperations::resolveConfigPath(const ActionStep& step) const {
    const bool hasFile = step.words.size() > 1;
    return targets_.resolveConfigPath(
        step.words[0], hasFile ? std::optional<std::string_view>(step.words[1]) : std::nullopt);
}

void BangOperations::deactivateConfig(const ActionStep& step) {
    if (step.words.empty())
        host_.deactivate();
    else
        host_.deactivateConfig(resolveConfigPath(step));
}

void BangOperations::activateConfig(const ActionStep& step, bool toggle) {
    host_.activateConfig(resolveConfigPath(step), toggle);
}

void BangOperations::commandMeasure(std::string_view arguments) {
    const auto [measure, command] = ActionGrammar::parseTwoArguments(arguments);
    if (measure && command)
        executeCommand(*measure, ActionGrammar::stripQuotes(*command));
}

void BangOperations::pluginBang(std::string_view arguments) {
    const auto [measure, command] = ActionGrammar::parseTwoArguments(ActionGrammar::stripQuotes(arguments));
    if (measure && command)
        executeCommand(*measure, *command);
}

void BangOperations::executeCommand(std::string_view measureName, std::string_view command) {
    if (auto* measure = parts_.measures.find(measureName))
        measure->executeCommand(command);
}

bool BangOperations::updateMeasure(std::string_view name) {
    const auto position = parts_.measures.position(name);
    if (position)
        measureActions_.forceUpdateMeasure(*position);
    return position.has_value();
}

bool BangOperations::updateMeasureGroup(std::string_view group) {
    for (const auto position : groups_.measureIndices(group))
        measureActions_.forceUpdateMeasure(position);
    return true;
}

template <typename Change> void BangOperations::control(std::string_view name, Change change) {
    if (const auto position = parts_.measures.position(name))
        change(parts_.measures.controls(*position));
}

template <typename Change> void BangOperations::controlGroup(std::string_view group, Change change) {
    for (const auto position : groups_.measureIndices(group))
        change(parts_.measures.controls(position));
}

bool BangOperations::writeKeyValue(const ActionStep& step) {
    const auto& section = step.words[0];
    const auto& key = step.words[1];
    const auto value = resolveBangValue(step.words[2]);
    const auto path = targets_.resolveWriteFilePath(step.words.size() > 3 ? step.words[3] : "");
    if (!INIFileWriter::writeKeyValue(path, section, key, value))
        return false;
    // The skin's own variables follow, whatever file was written. This alone asks for no publication.
    if (equalsIgnoringCase(section, "VARIABLES"))
        options_.setVariable(key, value);
    return true;
}

bool BangOperations::setVariable(const ActionStep& step) {
    if (!options_.setVariable(step.words[0], resolveBangValue(step.words[1])))
        return false;
    parts_.publication.markChanged();
    return true;
}

void BangOperations::publishNow() {
    parts_.publication.publishDrawables(Publication::Force::Yes);
}

bool BangOperations::openExternalTarget(std::string_view text) {
    const auto target = targets_.resolveExternalTarget(text);
    if (!target || !parts_.workspace)
        return false;
    return target->kind == SkinFileTargets::External::Kind::url ? parts_.workspace->openURL(target->text)
                                                                : parts_.workspace->openFile(target->text);
}

std::string BangOperations::resolveBangValue(std::string_view text) const {
    auto value = parts_.meters.substituteMeterCoordinateReferences(parts_.expressions.substituteRuntimeVariables(text));
    if (!ExpressionText::shouldAttemptNumericEvaluation(value))
        return value;
    auto number = ExpressionText::evaluateNumericExpression(value);
    if (!number)
        number = CalcMeasure::evaluateIfValid(value);
    return number ? formatNumeric(*number) : value;
}

} // namespace Ostrel
