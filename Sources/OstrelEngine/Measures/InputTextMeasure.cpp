#include "OstrelEngine/Measures/InputTextMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/MeasureHost.h"
#include "OstrelEngine/Measures/PositionParser.h"

#include <algorithm>
#include <limits>

namespace Ostrel {

namespace {

constexpr std::string_view UserInputToken = "$USERINPUT$";
constexpr std::string_view CommandPrefix = "COMMAND";
constexpr double DefaultWidth = 120;
constexpr double DefaultHeight = 22;
/// A skin may start a batch on every tick while the user has not answered yet.
constexpr std::size_t MaxPendingCommands = 4096;

std::string_view stripSurroundingQuotes(std::string_view text) {
    text = trimmed(text);
    const bool isQuoted
        = text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

bool parseBoolean(std::optional<std::string_view> text, bool defaultValue) {
    const auto word = lowerCased(trimmed(text.value_or("")));
    for (const std::string_view yes : {"1", "true", "yes", "on"}) {
        if (word == yes)
            return true;
    }
    for (const std::string_view no : {"0", "false", "no", "off"}) {
        if (word == no)
            return false;
    }
    return defaultValue;
}

std::optional<std::int64_t> parsePositiveInt(std::optional<std::string_view> text) {
    const auto number = parseInteger(trimmed(text.value_or("")));
    return number && *number > 0 ? number : std::nullopt;
}

double parseCoordinate(std::optional<std::string_view> text) {
    const auto position = PositionParser::parsePosition(text);
    return position ? position->value : 0;
}

double parseExtent(std::optional<std::string_view> text, double defaultValue) {
    const double extent = PositionParser::parseDimension(text);
    return std::max(extent > 0 ? extent : defaultValue, 1.0);
}

InputTextPresentation parsePresentation(const MeasureDefinition& definition) {
    const auto& options = definition.allOptions;
    InputTextPresentation presentation;
    presentation.measureName = definition.sectionName;
    presentation.frame = {parseCoordinate(option(options, "X"_key)), parseCoordinate(option(options, "Y"_key)),
        parseExtent(option(options, "W"_key), DefaultWidth), parseExtent(option(options, "H"_key), DefaultHeight)};
    presentation.defaultValue = stripSurroundingQuotes(option(options, "DefaultValue"_key).value_or(""));
    presentation.focusDismiss = parseBoolean(option(options, "FocusDismiss"_key), true);
    presentation.isPassword = parseBoolean(option(options, "Password"_key), false);
    presentation.inputLimit = parsePositiveInt(option(options, "InputLimit"_key));
    presentation.numericOnly = parseBoolean(option(options, "InputNumber"_key), false);
    return presentation;
}

std::map<std::int64_t, std::string> parseCommandTemplates(const Options& options) {
    std::map<std::int64_t, std::string> templates;
    for (const auto& entry : options) {
        const auto key = upperCased(entry.key);
        if (!key.starts_with(CommandPrefix))
            continue;
        if (const auto number = parseInteger(std::string_view(key).substr(CommandPrefix.size()));
            number && *number >= 1)
            templates[*number] = entry.value;
    }
    return templates;
}

struct BatchRange {
    std::int64_t first = 1;
    std::int64_t last = std::numeric_limits<std::int64_t>::max();
};

/// "ALL", "2" or "2-3"; what is none of these means all.
BatchRange parseBatchRange(std::string_view text) {
    text = trimmed(text);
    if (const auto dash = text.find('-'); dash != std::string_view::npos) {
        const auto first = parseInteger(trimmed(text.substr(0, dash)));
        const auto last = parseInteger(trimmed(text.substr(dash + 1)));
        if (first && last)
            return {*first, *last};
    }
    if (const auto number = parseInteger(text))
        return {*number, *number};
    return {};
}

/// Digits of any script, the first point, and a minus sign where it leads.
std::string filterNumericInput(std::string_view value) {
    std::string result;
    bool hasPoint = false;
    for (std::size_t i = 0; i < value.size();) {
        const auto c = decodeCharacter(value, i);
        const bool isFirstPoint = c.value == '.' && !hasPoint;
        if (isNumeric(c.value) || isFirstPoint || (c.value == '-' && result.empty()))
            result.append(value, i, c.length);
        hasPoint = hasPoint || isFirstPoint;
        i += c.length;
    }
    return result;
}

/// Where the first whitespace stands; none means one word.
std::optional<std::size_t> firstWhitespace(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto c = decodeCharacter(text, i);
        if (isWhitespace(c.value))
            return i;
        i += c.length;
    }
    return std::nullopt;
}

} // namespace

InputTextMeasure::InputTextMeasure(const MeasureDefinition& definition, std::string skinPath, MeasureHost& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host)
    , presentation_(parsePresentation(definition))
    , dismissAction_(Ostrel::option(definition.allOptions, "OnDismissAction"_key).value_or(""))
    , commandTemplates_(parseCommandTemplates(definition.allOptions)) {
    publishAnswer("");
}

bool InputTextMeasure::executeCommand(std::string_view text) {
    text = trimmed(text);
    const auto blank = firstWhitespace(text);
    if (text.empty())
        return true;
    if (!blank)
        enqueue({"!SetVariable " + std::string(text) + " \"$UserInput$\""});
    else if (upperCased(text.substr(0, *blank)) == "EXECUTEBATCH")
        enqueue(commandsForBatchRange(text.substr(*blank)));
    return true;
}

std::vector<std::string> InputTextMeasure::commandsForBatchRange(std::string_view text) const {
    const auto range = parseBatchRange(text);
    std::vector<std::string> commands;
    if (range.first < 1 || range.last < range.first)
        return commands;
    auto expected = range.first;
    for (auto at = commandTemplates_.find(range.first); at != commandTemplates_.end(); ++at) {
        if (at->first != expected || at->first > range.last || at->second.empty())
            break;
        commands.push_back(at->second);
        if (expected == range.last)
            break;
        ++expected;
    }
    return commands;
}

void InputTextMeasure::enqueue(std::vector<std::string> commands) {
    if (commands.empty() || pendingCommands_.size() + commands.size() > MaxPendingCommands)
        return;
    pendingCommands_.insert(
        pendingCommands_.end(), std::make_move_iterator(commands.begin()), std::make_move_iterator(commands.end()));
    processPendingCommands();
}

void InputTextMeasure::processPendingCommands() {
    // A new batch queues behind an open prompt; the queue is read again after every action, which may have added to it.
    if (waitingForInputTemplate_)
        return;
    while (!pendingCommands_.empty()) {
        const auto command = std::move(pendingCommands_.front());
        pendingCommands_.pop_front();
        if (containsIgnoringCase(command, UserInputToken)) {
            waitingForInputTemplate_ = command;
            host_.promptInput(presentation_);
            return;
        }
        host_.runAction(*this, command);
    }
}

void InputTextMeasure::submitInput(std::string_view value) {
    if (!waitingForInputTemplate_)
        return;
    const auto command = *std::exchange(waitingForInputTemplate_, std::nullopt);
    const auto answer = normalizedInput(value);
    publishAnswer(answer);
    host_.promptInput(std::nullopt);
    host_.runAction(*this, replacingOccurrencesIgnoringCase(command, UserInputToken, answer));
    processPendingCommands();
}

std::string InputTextMeasure::normalizedInput(std::string_view value) const {
    auto text = presentation_.numericOnly ? filterNumericInput(value) : std::string(value);
    if (presentation_.inputLimit)
        text = characterPrefix(text, *presentation_.inputLimit);
    return text;
}

void InputTextMeasure::dismissInput() {
    const bool wasPrompting = isPrompting();
    waitingForInputTemplate_.reset();
    pendingCommands_.clear();
    if (!wasPrompting)
        return;
    host_.promptInput(std::nullopt);
    if (!trimmed(dismissAction_).empty())
        host_.runAction(*this, dismissAction_);
}

} // namespace Ostrel
