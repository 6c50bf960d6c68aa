#include "OstrelEngine/Measures/Full/FullNetMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

namespace {

constexpr double BitsPerByte = 8;

int rank(const NetworkInterface& interface) {
    const bool isUp = interface.hasCarrier || interface.state == "up";
    return (interface.hasDefaultRoute ? 4 : 0) + (isUp ? 2 : 0) + (interface.isWireless ? 0 : 1);
}

} // namespace

const NetworkInterface* chosenInterface(const std::vector<NetworkInterface>& interfaces, std::string_view wanted) {
    wanted = trimmed(wanted);
    const auto named = std::ranges::find_if(
        interfaces, [wanted](const NetworkInterface& i) { return equalsIgnoringCase(i.name, wanted); });
    if (named != interfaces.end())
        return &*named;
    if (const auto number = parseInteger(wanted);
        number && *number > 0 && *number <= static_cast<std::int64_t>(interfaces.size()))
        return &interfaces[static_cast<std::size_t>(*number) - 1];
    const auto best = std::ranges::max_element(interfaces, {}, rank);
    return best == interfaces.end() ? nullptr : &*best;
}

FullNetMeasure::FullNetMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host)
    , countsIn_(!equalsIgnoringCase(definition.measureType, "NETOUT"))
    , countsOut_(!equalsIgnoringCase(definition.measureType, "NETIN")) { }

void FullNetMeasure::readOptions() {
    interface_ = trimmed(text("Interface"_key, "Best"));
    isCumulative_ = isOn("Cumulative"_key, false);
    bitsPerUnit_ = isOn("UseBits"_key, false) ? 1 : BitsPerByte;
    minimum_ = number("MinValue"_key, 0) / bitsPerUnit_;
    maximum_.reset();
    if (const auto written = option("MaxValue"_key))
        maximum_ = OptionValues::number(*written);
    if (maximum_)
        maximum_ = *maximum_ / bitsPerUnit_;
    // The old option is in bytes.
    const auto old = countsIn_ ? option("NetInSpeed"_key) : option("NetOutSpeed"_key);
    if (!maximum_ && old)
        maximum_ = OptionValues::number(*old);
}

FullNetMeasure::Traffic FullNetMeasure::traffic() const {
    Traffic result;
    result.time = host().platform().clock.uptimeSeconds();
    auto* details = host().platform().hostStatistics.details();
    if (!details)
        return result;
    const auto add = [&](const NetworkInterface& interface) {
        result.interface = interface.name;
        result.bytes += (countsIn_ ? static_cast<double>(interface.in) : 0)
            + (countsOut_ ? static_cast<double>(interface.out) : 0);
    };
    const auto& interfaces = details->networkInterfaces();
    if (interface_ == "0") {
        std::ranges::for_each(interfaces, add);
        result.interface = "0";
    } else if (const auto* interface = chosenInterface(interfaces, interface_)) {
        add(*interface);
    }
    return result;
}

void FullNetMeasure::update() {
    if (optionsDidChange())
        readOptions();
    const auto now = traffic();
    const auto before = std::exchange(before_, now);
    double shown = now.bytes;
    if (!isCumulative_) {
        const double seconds = before ? now.time - before->time : 0;
        const bool isSame = before && before->interface == now.interface;
        // A counter that falls belongs to an interface that has begun again.
        shown = isSame && seconds > 0 ? std::max(0.0, now.bytes - before->bytes) / seconds : 0;
    }
    shown *= BitsPerByte / bitsPerUnit_;
    peak_ = std::max(peak_, shown);
    publishNumber(shown, minimum_, maximum_.value_or(std::max(peak_, 1.0)));
}

} // namespace Ostrel
