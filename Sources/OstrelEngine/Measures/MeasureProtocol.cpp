#include "OstrelEngine/Measures/MeasureProtocol.h"

#include "OstrelCore/Numbers.h"
#include "OstrelEngine/Measures/Substitution.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Ostrel {

namespace {

std::unique_ptr<Substitution> makeSubstitution(const Options& options) {
    const auto mode = option(options, "RegExpSubstitute"_key) == "1" ? Substitution::Mode::RegularExpression
                                                                     : Substitution::Mode::Plain;
    return Substitution::create(option(options, "Substitute"_key).value_or(""), mode);
}

} // namespace

BaseMeasure::BaseMeasure(const MeasureDefinition& definition, std::string skinPath)
    : definition_(definition)
    , skinPath_(std::move(skinPath))
    , options_(definition.allOptions)
    , substitution_(makeSubstitution(options_))
    , updateDivider_(parseUpdateDivider(option("UpdateDivider"_key))) { }

BaseMeasure::~BaseMeasure() = default;

int BaseMeasure::parseUpdateDivider(std::optional<std::string_view> text) {
    const auto divider = text ? parseInteger(*text) : std::nullopt;
    if (!divider)
        return 1;
    if (*divider < 0)
        return -1;
    return static_cast<int>(std::clamp<std::int64_t>(*divider, 1, std::numeric_limits<int>::max()));
}

void BaseMeasure::setOption(std::string_view key, std::string_view value) {
    if (const auto* current = options_.find(key); current && *current == value)
        return;
    options_.set(key, std::string(value));
    ++optionsRevision_;
}

void BaseMeasure::publish(double number, std::string_view text, bool preferText, double minimum, double maximum) {
    if (substitution_)
        text = substitution_->apply(text);
    const bool sameText = value_.stringValue == text;
    const bool isSame = sameText && value_.numericValue == number && value_.preferStringValue == preferText
        && value_.minValue == minimum && value_.maxValue == maximum;
    // The numbers are assigned even so: a negative zero equals zero and yet prints otherwise.
    value_.numericValue = number;
    value_.preferStringValue = preferText;
    value_.minValue = minimum;
    value_.maxValue = maximum;
    if (!sameText)
        value_.stringValue = text;
    if (!isSame)
        ++valueRevision_;
}

void BaseMeasure::publishUnchanged() {
    if (std::isnan(value_.numericValue))
        ++valueRevision_;
}

} // namespace Ostrel
