#include "OstrelEngine/Measures/TimeMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/Clock.h"

#include <utility>

namespace Ostrel {

namespace {

struct Directive {
    std::string_view text;
    std::string_view pattern;
};

/// Replaced one after another over the whole text; the forms without a leading zero come first, so that the others do
/// not eat them.
constexpr Directive Directives[] = {{"%#Y", "yyyy"}, {"%#y", "yy"}, {"%#m", "M"}, {"%#d", "d"}, {"%#H", "H"},
    {"%#I", "h"}, {"%#M", "m"}, {"%#S", "s"}, {"%Y", "yyyy"}, {"%y", "yy"}, {"%m", "MM"}, {"%d", "dd"}, {"%H", "HH"},
    {"%I", "hh"}, {"%M", "mm"}, {"%S", "ss"}, {"%p", "a"}, {"%A", "EEEE"}, {"%a", "EEE"}, {"%B", "MMMM"}, {"%b", "MMM"},
    {"%Z", "zzz"}, {"%z", "xx"}, {"%%", "'%'"}};

} // namespace

TimeMeasure::TimeMeasure(const MeasureDefinition& definition, std::string skinPath, const Clock& clock)
    : BaseMeasure(definition, std::move(skinPath))
    , clock_(clock)
    , formatter_(convertStrftime(withoutDoubleQuotes(option("Format"_key).value_or("%H:%M:%S")))) { }

std::string TimeMeasure::convertStrftime(std::string_view format) {
    std::string pattern(format);
    for (const auto& directive : Directives)
        pattern = replacingOccurrences(pattern, directive.text, directive.pattern);
    return pattern;
}

void TimeMeasure::update() {
    const double now = clock_.wallSeconds();
    publish(now, formatter_.format(now), false, 0, 0);
}

} // namespace Ostrel
