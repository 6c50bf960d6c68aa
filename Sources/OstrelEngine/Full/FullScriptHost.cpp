#include "OstrelEngine/Full/FullScriptHost.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/Formula.h"
#include "OstrelDialect/LiteralMarks.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelDialect/References.h"
#include "OstrelEngine/Full/FullLayout.h"
#include "OstrelEngine/Full/FullMeasureTable.h"
#include "OstrelEngine/Full/FullMeterTable.h"
#include "OstrelEngine/Full/LiveSection.h"
#include "OstrelEngine/Full/SkinScope.h"
#include "OstrelEngine/Full/SkinVariables.h"

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

int whole(double number) {
    constexpr double Limit = 1e9;
    return std::isnan(number) ? 0 : static_cast<int>(std::clamp(number, -Limit, Limit));
}

} // namespace

void FullScriptHost::bang(const BaseMeasure& script, std::string_view name, const std::vector<std::string>& arguments) {
    parts_.actions.runRawBang(name, arguments, {script.name()});
}

void FullScriptHost::action(const BaseMeasure& script, std::string_view text) {
    parts_.actions.runRaw(text, {script.name()});
}

std::optional<std::string_view> FullScriptHost::variable(std::string_view name) {
    const auto position = parts_.variables.position(name);
    if (!position)
        return std::nullopt;
    const auto& raw = parts_.variables.raw(*position);
    if (raw.find_first_of("#[%\xEF") == std::string::npos)
        return raw;
    lastVariable_ = parts_.scope.resolveNow(raw, {}, ReferenceKinds::All);
    return lastVariable_;
}

std::optional<double> FullScriptHost::formula(std::string_view text) {
    const auto formula = Formula::compile(text, &parts_.measureNames);
    return formula ? formula->evaluate(&parts_.measureNames) : std::nullopt;
}

std::optional<std::string> FullScriptHost::option(
    const LiveSection& section, std::string_view name, bool withSections) const {
    const auto* raw = section.effective(name);
    if (!raw)
        return std::nullopt;
    return parts_.scope.resolveNow(*raw, section.name(), withSections ? ReferenceKinds::All : ReferenceKinds::AtLoad);
}

std::optional<std::string> FullScriptHost::option(
    const BaseMeasure& measure, std::string_view name, bool withSections) {
    const auto position = parts_.measures.position(measure.name());
    return position ? option(parts_.sections.at(parts_.measures.entry(*position).section), name, withSections)
                    : std::nullopt;
}

std::optional<std::string> FullScriptHost::option(std::size_t meter, std::string_view name, bool withSections) {
    return option(parts_.sections.at(parts_.meters.entry(meter).section), name, withSections);
}

std::optional<std::size_t> FullScriptHost::meter(std::string_view name) const {
    return parts_.meters.position(name);
}

const std::string& FullScriptHost::meterName(std::size_t meter) const {
    return parts_.meters.at(meter).name();
}

Rect FullScriptHost::meterOptionFrame(std::size_t meter) const {
    const auto& frame = parts_.layout.frame(meter);
    const Point written = parts_.layout.written(meter);
    return {written.x, written.y, frame.w, frame.h};
}

Rect FullScriptHost::meterFrame(std::size_t meter) const {
    return parts_.layout.frame(meter).rect();
}

void FullScriptHost::setMeterSide(std::size_t meter, Side side, double value) {
    if (side == Side::X)
        return parts_.layout.move(meter, value, std::nullopt);
    if (side == Side::Y)
        return parts_.layout.move(meter, std::nullopt, value);
    // Until the option is read again: the section's own text stays as it is.
    parts_.meters.at(meter).setOption(side == Side::Width ? "W" : "H", OptionValues::numberText(std::trunc(value), 0));
}

Rect FullScriptHost::windowFrame() const {
    const auto number = [&](std::string_view name) {
        const auto position = parts_.variables.position(name);
        return position ? OptionValues::number(parts_.variables.raw(*position)).value_or(0) : 0;
    };
    return {number("CURRENTCONFIGX"), number("CURRENTCONFIGY"), number("CURRENTCONFIGWIDTH"),
        number("CURRENTCONFIGHEIGHT")};
}

void FullScriptHost::moveWindow(double x, double y) {
    parts_.host.moveWindow(whole(x), whole(y));
}

void FullScriptHost::fadeWindow(double /*from*/, double to) {
    parts_.host.setTransparency(std::clamp(whole(to), 0, 255));
}

} // namespace Ostrel
