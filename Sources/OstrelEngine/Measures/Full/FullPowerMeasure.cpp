#include "OstrelEngine/Measures/Full/FullPowerMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/Full/TimeLocale.h"
#include "OstrelPlatform/HostDetails.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

namespace Ostrel {

namespace {

/// In the order of the states.
constexpr std::string_view StateNames[] = {"", "ACLINE", "STATUS", "STATUS2", "LIFETIME", "PERCENT", "HZ", "MHZ"};
constexpr double Critical = 5;
constexpr double Low = 33;
constexpr double High = 66;

double status(const PowerFigures& power) {
    if (!power.hasBattery)
        return 0;
    if (power.isCharging)
        return 1;
    return power.percent < Critical ? 2 : power.percent < Low ? 3 : 4;
}

/// The sum of flags: 1 high, 2 low, 4 critical, 8 charging; 128 without a battery.
double flags(const PowerFigures& power) {
    if (!power.hasBattery)
        return 128;
    const double level = power.percent < Critical ? 4 : power.percent < Low ? 2 : power.percent > High ? 1 : 0;
    return level + (power.isCharging ? 8 : 0);
}

} // namespace

void FullPowerMeasure::readOptions() {
    const auto name = std::ranges::find(StateNames, upperCased(trimmed(text("PowerState"_key))));
    state_ = name == std::end(StateNames) ? State::None : static_cast<State>(name - std::begin(StateNames));
    if (state_ == State::None)
        host().log(LogLevel::Error, this->name(), "Unknown PowerState: " + std::string(text("PowerState"_key)));
    format_.emplace(text("Format"_key, "%H:%M"));
}

void FullPowerMeasure::update() {
    if (optionsDidChange())
        readOptions();
    auto* details = host().platform().hostStatistics.details();
    const auto power = details ? details->power() : PowerFigures();
    switch (state_) {
    case State::None:
        return publishNumber(0);
    case State::ACLine:
        return publishNumber(power.isPluggedIn ? 1 : 0, 0, 1);
    case State::Status:
        return publishNumber(status(power), 0, 4);
    case State::Status2:
        return publishNumber(flags(power), 0, 255);
    case State::Percent:
        return publishNumber(power.percent, 0, 100);
    case State::Lifetime: {
        const auto left = power.secondsLeft;
        const auto time = left ? WallTime::fromSecondsSince1601(numericAsInt64(*left)) : std::nullopt;
        return publishText(time ? format_->text(*time, *TimeLocale::english(), {}) : "Unknown", time ? *left : -1);
    }
    case State::Hz:
    case State::MHz: {
        const auto megahertz = parseDouble(details ? details->fact(MachineFact::ProcessorMHz) : "").value_or(0);
        return publishNumber(state_ == State::Hz ? megahertz * 1e6 : megahertz);
    }
    }
}

} // namespace Ostrel
