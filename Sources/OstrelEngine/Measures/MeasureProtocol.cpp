#include "OstrelEngine/Measures/MeasureProtocol.h"

#include "OstrelCore/Text/Numbers.h"
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

void BaseMeasure::removeOption(std::string_view key) {
    if (!options_.contains(key))
        return;
    options_.remove(key);
    ++optionsRevision_;
}

void BaseMeasure::setShaping(std::unique_ptr<ValueShaping> shaping) {
    shaping_ = std::move(shaping);
    if (shaping_)
        shaping_->optionsDidChange(options_);
    shapedOptionsRevision_ = optionsRevision_;
    // A value from before has no range yet where the range is to be tracked, nor has one that nobody published.
    if (value_.minValue > value_.maxValue || valueRevision_ == 0) {
        value_.minValue = 0;
        value_.maxValue = 1;
    }
}

void BaseMeasure::readAsZero() {
    if (value_.numericValue == 0)
        return;
    value_.numericValue = 0;
    ++valueRevision_;
}

void BaseMeasure::publishShaped(double number, std::string_view text, bool preferText, double minimum, double maximum) {
    if (shapedOptionsRevision_ != optionsRevision_) {
        shaping_->optionsDidChange(options_);
        shapedOptionsRevision_ = optionsRevision_;
    }
    taken_.numericValue = number;
    taken_.stringValue = text;
    taken_.preferStringValue = preferText;
    taken_.minValue = minimum;
    taken_.maxValue = maximum;
    MeasureValue shaped = taken_;
    shaping_->shape(shaped);
    if (shaped == value_)
        return;
    value_ = std::move(shaped);
    ++valueRevision_;
}

void BaseMeasure::publish(double number, std::string_view text, bool preferText, double minimum, double maximum) {
    if (shaping_) {
        publishShaped(number, text, preferText, minimum, maximum);
        return;
    }
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
    if (shaping_) {
        const MeasureValue taken = taken_;
        publishShaped(taken.numericValue, taken.stringValue, taken.preferStringValue, taken.minValue, taken.maxValue);
        return;
    }
    if (std::isnan(value_.numericValue))
        ++valueRevision_;
}

} // namespace Ostrel
