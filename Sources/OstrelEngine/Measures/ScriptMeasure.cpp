#include "OstrelEngine/Measures/ScriptMeasure.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/CalcMeasure.h"
#include "OstrelEngine/Measures/MeasureHost.h"

#include <cmath>
#include <vector>

namespace Ostrel {

namespace {

/// Far beyond any skin; a hostile number of sections must not stop the desktop.
constexpr std::size_t MaxDispatches = 50000;

/// A copy, since what follows may set it.
std::string numberedOption(const Options& options, std::string_view name, std::int64_t number) {
    const auto* text = options.find(std::string(name) + formatInteger(number));
    return text ? *text : std::string();
}

std::string scriptNumber(double value) {
    const double rounded = std::round(value);
    return std::abs(value - rounded) < 1e-07 ? formatNumeric(rounded) : formatGeneral(value, 10);
}

/// "%%" becomes the index, and each "{...}" the value of its formula.
std::string applyFactorySubstitutions(std::string_view text, std::int64_t index) {
    std::string rest = replacingOccurrences(text, "%%", formatInteger(index));
    std::string result;
    std::size_t copied = 0;
    for (;;) {
        const auto open = rest.find('{', copied);
        const auto close = rest.find('}', open);
        if (open == std::string::npos || close == std::string::npos)
            return result.append(rest, copied);
        result.append(rest, copied, open - copied);
        result += scriptNumber(CalcMeasure::evaluate(std::string_view(rest).substr(open + 1, close - open - 1)));
        copied = close + 1;
    }
}

std::string escaped(std::string_view text) {
    return replacingOccurrences(text, "\"", "\\\"");
}

} // namespace

ScriptMeasure::ScriptMeasure(const MeasureDefinition& definition, std::string skinPath, MeasureHost& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host) {
    publish(0, "", false, 0, 0);
}

bool ScriptMeasure::executeCommand(std::string_view text) {
    if (!hasPrefixIgnoringCase(trimmed(text), "INITIALIZE"))
        return true;
    const auto file = lowerCased(lastPathComponent(normalizeSeparators(option("ScriptFile"_key).value_or(""))));
    if (file == "factory.lua")
        runFactoryInitialize();
    else if (file == "refresher.lua")
        runRefresherInitialize();
    return true;
}

void ScriptMeasure::runFactoryInitialize() const {
    const auto count = parseInteger(option("Number"_key).value_or("0")).value_or(0);
    const std::string sectionTemplate(option("SectionName"_key).value_or(""));
    if (sectionTemplate.empty())
        return;
    std::size_t dispatched = 0;
    for (std::int64_t index = 0; index < count; ++index) {
        const auto section = applyFactorySubstitutions(sectionTemplate, index);
        const auto before = dispatched;
        // Read again each time: an option that is set from here may be one of our own.
        for (std::int64_t number = 0; dispatched < MaxDispatches; ++number, ++dispatched) {
            const auto key = numberedOption(options(), "Option", number);
            if (key.empty())
                break;
            const auto value = numberedOption(options(), "Value", number);
            dispatch("!SetOption", section, key, applyFactorySubstitutions(value, index));
        }
        // Nothing was set, so nothing will be.
        if (dispatched == before)
            return;
    }
}

void ScriptMeasure::runRefresherInitialize() {
    const bool isFirst = option("Refreshed"_key).value_or("0") == "0";
    const std::string_view flag = isFirst ? "1" : "0";
    setOption("Refreshed", flag);
    dispatch("!WriteKeyValue", name(), "Refreshed", flag);
    if (isFirst)
        host_.runAction(*this, "[!Refresh]");
}

void ScriptMeasure::dispatch(
    std::string_view bang, std::string_view section, std::string_view key, std::string_view value) const {
    std::string action = "[";
    action.append(bang);
    for (const auto argument : {section, key, value})
        action.append(" \"").append(escaped(argument)).append("\"");
    host_.runAction(*this, action.append("]"));
}

} // namespace Ostrel
