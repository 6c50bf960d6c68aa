#include "OstrelEngine/Meters/Full/NumberFormat.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Ostrel {

namespace {

constexpr std::size_t LargestText = 1 << 20;
constexpr int MostDecimals = 30;
std::string fixed(double value, int decimals) {
    return OptionValues::fixedText(value, std::clamp(decimals, 0, MostDecimals));
}

std::string autoScaled(double value, double base, bool startsAtKilo, int decimals) {
    static constexpr std::array Units = {"", "k", "M", "G", "T", "P", "E", "Z", "Y"};
    std::size_t unit = 0;
    while ((std::abs(value) >= base || (startsAtKilo && unit == 0)) && unit + 1 < Units.size()) {
        value /= base;
        ++unit;
    }
    // The blank stands without a unit too, so that "%1B" gives "512.0 B".
    return fixed(value, decimals) + ' ' + Units[unit];
}

/// The longest number at the beginning of the text that has a value; 0 without one.
struct Place {
    std::size_t number = 0;
    std::size_t length = 0;
};

Place placeAt(std::string_view text, std::size_t count) {
    Place best;
    std::size_t number = 0;
    for (std::size_t i = 0; i < text.size() && isASCIIDigit(text[i]); ++i) {
        number = number * 10 + static_cast<std::size_t>(text[i] - '0');
        if (number > count)
            break;
        if (number > 0)
            best = {number, i + 1};
    }
    return best;
}

} // namespace

NumberFormat NumberFormat::parse(const Options& options) {
    const auto text = [&](const CaseKey& key) { return trimmed(option(options, key).value_or("")); };
    NumberFormat format;
    if (const auto decimals = OptionValues::integer(text("NumOfDecimals"_key)))
        format.decimals = std::clamp(*decimals, 0, MostDecimals);
    format.isPercentual = OptionValues::isOn(text("Percentual"_key)).value_or(false);
    const auto scale = text("Scale"_key);
    if (const auto number = OptionValues::number(scale); number && *number != 0) {
        format.scale = *number;
        format.scaleHasPoint = scale.find('.') != std::string_view::npos;
    }
    const auto autoScale = OptionValues::unquoted(text("AutoScale"_key));
    if (autoScale.starts_with('1') || autoScale.starts_with('2')) {
        format.autoScaleBase = autoScale[0] == '1' ? 1024 : 1000;
        format.startsAtKilo = autoScale.size() > 1 && asciiUpper(autoScale[1]) == 'K';
    }
    return format;
}

NumberFormat NumberFormat::ofToolTips() {
    NumberFormat format;
    format.decimals = 0;
    format.autoScaleBase = 1024;
    return format;
}

std::string NumberFormat::number(const MeasureValue& value) const {
    if (isPercentual)
        return fixed(value.percentValue(), decimals.value_or(0));
    const double number = std::isfinite(value.numericValue) ? value.numericValue : 0;
    if (autoScaleBase != 0)
        return autoScaled(number, autoScaleBase, startsAtKilo, decimals.value_or(1));
    return fixed(number / scale, decimals.value_or(scaleHasPoint ? 1 : 0));
}

std::string NumberFormat::text(const MeasureValue& value) const {
    if (value.preferStringValue || !value.stringValue.empty())
        return value.stringValue;
    auto made = number(value);
    return value.textRule ? value.textRule->apply(made) : made;
}

std::string replacingPlaces(std::string_view textTemplate, MeasureValues values, const NumberFormat& format) {
    std::string result;
    while (!textTemplate.empty() && result.size() < LargestText) {
        const auto sign = textTemplate.find('%');
        result += textTemplate.substr(0, sign);
        if (sign == std::string_view::npos)
            break;
        textTemplate.remove_prefix(sign + 1);
        const auto place = placeAt(textTemplate, values.size());
        if (place.number == 0)
            result += '%';
        else
            result += format.text(values[place.number - 1]);
        textTemplate.remove_prefix(place.length);
    }
    if (result.size() > LargestText)
        result.resize(LargestText);
    return result;
}

} // namespace Ostrel
