#include "OstrelEngine/Measures/Full/FullInputTextMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

namespace {

constexpr std::string_view InputToken = "$USERINPUT$";
constexpr double DefaultWidth = 120;
constexpr double DefaultHeight = 22;
constexpr int LargestBatch = 4096;
/// Options that may stand behind a command, in upper case.
constexpr std::string_view PromptOptions[] = {"DEFAULTVALUE", "FOCUSDISMISS", "FONTCOLOR", "FONTFACE", "FONTSIZE", "H",
    "INPUTLIMIT", "INPUTNUMBER", "PASSWORD", "SOLIDCOLOR", "STRINGALIGN", "STRINGSTYLE", "TOPMOST", "W", "X", "Y"};

struct Command {
    std::string action;
    Options overrides;
};

/// The value that text begins with: quoted, or up to the next blank. What is taken is removed.
std::string_view takeValue(std::string_view& text) {
    if (text.starts_with('"')) {
        const auto end = std::min(text.find('"', 1), text.size());
        const auto value = text.substr(1, end - 1);
        text.remove_prefix(std::min(text.size(), end + 1));
        return value;
    }
    const auto value = text.substr(0, text.find(' '));
    text.remove_prefix(value.size());
    return value;
}

/// "!SetVariable A $UserInput$ Y=40 DefaultValue="x"": what stands in front of the first option is the action.
Command parseCommand(std::string_view written) {
    Command command;
    const auto nameAt = [](std::string_view text) -> std::string_view {
        const auto equals = text.find('=');
        const auto name = text.substr(0, equals);
        const bool isOption = equals != std::string_view::npos
            && std::ranges::find(PromptOptions, upperCased(name)) != std::end(PromptOptions);
        return isOption ? name : std::string_view();
    };
    bool isQuoted = false;
    int depth = 0;
    std::size_t end = written.size();
    for (std::size_t i = 0; i < written.size(); ++i) {
        const char c = written[i];
        isQuoted = isQuoted != (c == '"');
        depth += isQuoted ? 0 : (c == '[' ? 1 : c == ']' ? -1 : 0);
        const bool beginsWord = !isQuoted && depth <= 0 && i > 0 && (written[i - 1] == ' ' || written[i - 1] == ']');
        if (beginsWord && !nameAt(written.substr(i)).empty()) {
            end = i;
            break;
        }
    }
    command.action = trimmed(written.substr(0, end));
    auto rest = trimmed(written.substr(end));
    while (!rest.empty()) {
        const auto name = nameAt(rest);
        if (name.empty()) {
            takeValue(rest);
        } else {
            rest.remove_prefix(name.size() + 1);
            command.overrides.set(name, std::string(takeValue(rest)));
        }
        rest = trimmed(rest);
    }
    return command;
}

/// Digits, the first point, and a minus sign where it leads.
std::string numericInput(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const bool isPoint = c == '.' && result.find('.') == result.npos;
        if (isASCIIDigit(c) || isPoint || (c == '-' && result.empty()))
            result += c;
    }
    return result;
}

bool needsAnswer(std::string_view command) {
    return containsIgnoringCase(command, InputToken);
}

} // namespace

FullInputTextMeasure::FullInputTextMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host) {
    publish(0, {}, true, 0, 0);
}

bool FullInputTextMeasure::executeCommand(std::string_view command) {
    command = trimmed(command);
    const auto word = command.substr(0, command.find_first_of(" \t"));
    if (equalsIgnoringCase(word, "EXECUTEBATCH")) {
        enqueueBatch(trimmed(command.substr(word.size())));
        runPending();
    } else if (!word.empty() && word.size() == command.size()) {
        pending_.push_back("!SetVariable " + std::string(word) + " \"$UserInput$\"");
        runPending();
    }
    return true;
}

/// "ALL", "2" or "2-3": up to the first command that is missing.
void FullInputTextMeasure::enqueueBatch(std::string_view range) {
    const auto dash = range.find('-');
    const auto first = parseInteger(trimmed(range.substr(0, dash)));
    const auto last = dash == std::string_view::npos ? first : parseInteger(trimmed(range.substr(dash + 1)));
    const bool isRange = first && last;
    constexpr std::int64_t LargestNumber = 1000000;
    const auto begin = isRange ? std::min(*first, LargestNumber) : 1;
    const auto end = std::min<std::int64_t>(isRange ? *last : LargestBatch, begin + LargestBatch);
    for (auto number = begin; number >= 1 && number <= end && pending_.size() < LargestBatch; ++number) {
        const auto* written = options().find("Command" + formatInteger(number));
        if (!written || written->empty())
            break;
        pending_.push_back(*written);
    }
}

void FullInputTextMeasure::runPending() {
    // A batch that comes during a prompt waits behind it. An action may add to the queue.
    while (!waiting_ && !pending_.empty()) {
        auto command = parseCommand(std::exchange(pending_.front(), {}));
        pending_.pop_front();
        if (!needsAnswer(command.action)) {
            host().runAction(*this, command.action);
            continue;
        }
        waiting_ = std::move(command.action);
        shown_ = presentation(command.overrides);
        host().promptInput(shown_);
    }
}

InputTextPresentation FullInputTextMeasure::presentation(const Options& overrides) const {
    const auto written = [&](const CaseKey& key) -> std::optional<std::string_view> {
        const auto own = Ostrel::option(overrides, key);
        return own ? own : option(key);
    };
    const auto number = [&](const CaseKey& key, double fallback) {
        const auto text = written(key);
        return text ? OptionValues::number(*text).value_or(fallback) : fallback;
    };
    const auto isOn = [&](const CaseKey& key, bool fallback) {
        const auto text = written(key);
        return text ? OptionValues::isOn(*text).value_or(fallback) : fallback;
    };
    InputTextPresentation result;
    result.measureName = name();
    result.frame = {number("X"_key, 0), number("Y"_key, 0), std::max(1.0, number("W"_key, DefaultWidth)),
        std::max(1.0, number("H"_key, DefaultHeight))};
    result.defaultValue = OptionValues::unquoted(written("DefaultValue"_key).value_or(""));
    result.focusDismiss = isOn("FocusDismiss"_key, true);
    result.isPassword = isOn("Password"_key, false);
    result.numericOnly = isOn("InputNumber"_key, false);
    if (const auto limit = static_cast<std::int64_t>(number("InputLimit"_key, 0)); limit > 0)
        result.inputLimit = limit;
    result.style.fontFace = written("FontFace"_key).value_or("");
    result.style.fontSize = std::clamp(number("FontSize"_key, 0), 0.0, 1000.0);
    result.style.fontColor = OptionValues::color(written("FontColor"_key).value_or(""));
    result.style.fillColor = OptionValues::color(written("SolidColor"_key).value_or(""));
    const auto align = upperCased(written("StringAlign"_key).value_or(""));
    result.style.align = align.starts_with("CENTER") ? InputTextStyle::Align::Center
        : align.starts_with("RIGHT")                 ? InputTextStyle::Align::Right
                                                     : InputTextStyle::Align::Left;
    const auto style = upperCased(written("StringStyle"_key).value_or(""));
    result.style.isBold = style.starts_with("BOLD");
    result.style.isItalic = style.ends_with("ITALIC");
    return result;
}

void FullInputTextMeasure::submitInput(std::string_view answer) {
    if (!waiting_)
        return;
    const auto command = *std::exchange(waiting_, std::nullopt);
    auto text = shown_.numericOnly ? numericInput(answer) : std::string(answer);
    if (shown_.inputLimit)
        text = characterPrefix(text, *shown_.inputLimit);
    publish(0, text, true, 0, 0);
    host().promptInput(std::nullopt);
    host().runActionWithInput(*this, command, text);
    runPending();
}

void FullInputTextMeasure::dismissInput() {
    pending_.clear();
    if (!std::exchange(waiting_, std::nullopt))
        return;
    host().promptInput(std::nullopt);
    if (const auto action = option("OnDismissAction"_key); action && !trimmed(*action).empty())
        host().runAction(*this, *action);
}

} // namespace Ostrel
