#include "OstrelEngine/Meters/Full/ToolTip.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Meters/Full/NumberFormat.h"

#include <algorithm>

namespace Ostrel {

namespace {

constexpr double LargestWidth = 10'000;

} // namespace

ToolTip ToolTip::parse(const Options& options) {
    const auto text
        = [&](const CaseKey& key) { return OptionValues::unquoted(trimmed(option(options, key).value_or(""))); };
    const auto isOn = [&](const CaseKey& key) { return OptionValues::isOn(text(key)).value_or(false); };
    ToolTip tip;
    if (text("ToolTipText"_key).empty() || isOn("ToolTipHidden"_key))
        return tip;
    tip.text = replacingOccurrences(text("ToolTipText"_key), "#CRLF#", "\n");
    tip.title = text("ToolTipTitle"_key);
    tip.icon = tip.title.empty() ? std::string_view() : text("ToolTipIcon"_key);
    tip.isBalloon = isOn("ToolTipType"_key);
    if (const auto width = OptionValues::number(text("ToolTipWidth"_key)); width && *width > 0)
        tip.width = std::min(*width, LargestWidth);
    return tip;
}

ToolTip ToolTip::filled(MeasureValues values, const NumberFormat& numbers) const {
    ToolTip tip = *this;
    tip.text = replacingPlaces(text, values, numbers);
    tip.title = replacingPlaces(title, values, numbers);
    return tip;
}

} // namespace Ostrel
