#include "OstrelEngine/Measures/Full/FullSensorMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/HostDetails.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

/// The temperatures of a processor: its cores where they are told, else what its chip has.
std::vector<Sensor> processorTemperatures(const std::vector<Sensor>& sensors) {
    constexpr std::string_view Chips[] = {"coretemp", "k10temp", "zenpower", "cpu_thermal"};
    std::vector<Sensor> all;
    std::vector<Sensor> cores;
    for (const auto& sensor : sensors) {
        const bool isProcessor = std::ranges::find(Chips, sensor.chip) != std::end(Chips);
        if (!isProcessor || sensor.kind != Sensor::Kind::Temperature)
            continue;
        all.push_back(sensor);
        if (sensor.label.starts_with("Core "))
            cores.push_back(sensor);
    }
    return cores.empty() ? all : cores;
}

} // namespace

void FullCoreTempMeasure::update() {
    if (optionsDidChange()) {
        type_ = upperCased(trimmed(text("CoreTempType"_key, "MaxTemperature")));
        core_ = std::max(0, integer("CoreTempIndex"_key, 0));
    }
    auto* details = host().platform().hostStatistics.details();
    if (type_ == "CPUNAME")
        return publishText(details ? details->fact(MachineFact::ProcessorName) : "", 0);
    if (type_ == "CPUSPEED" || type_ == "CORESPEED")
        return publishNumber(parseDouble(details ? details->fact(MachineFact::ProcessorMHz) : "").value_or(0));
    if (type_ == "LOAD")
        return publishNumber(load(), 0, 100);
    publishNumber(temperature());
}

double FullCoreTempMeasure::temperature() const {
    auto* details = host().platform().hostStatistics.details();
    const auto sensors = details ? processorTemperatures(details->sensors()) : std::vector<Sensor>();
    const auto position = static_cast<std::size_t>(core_);
    if (type_ == "MAXTEMPERATURE") {
        const auto hottest = std::ranges::max_element(sensors, {}, &Sensor::value);
        return hottest == sensors.end() ? 0 : hottest->value;
    }
    if (position >= sensors.size())
        return 0;
    if (type_ == "TEMPERATURE")
        return sensors[position].value;
    return type_ == "TJMAX" ? sensors[position].critical.value_or(0) : 0;
}

double FullCoreTempMeasure::load() {
    const auto& times = host().platform().hostStatistics.processors();
    const auto position = static_cast<std::size_t>(core_) + 1;
    if (position >= times.size())
        return 0;
    const auto now = times[position];
    const auto before = std::exchange(before_, now);
    if (!before || now.busy < before->busy || now.idle < before->idle)
        return 0;
    const auto busy = static_cast<double>(now.busy - before->busy);
    const auto idle = static_cast<double>(now.idle - before->idle);
    return busy + idle > 0 ? busy / (busy + idle) * 100 : 0;
}

void FullSpeedFanMeasure::update() {
    auto* details = host().platform().hostStatistics.details();
    const auto type = upperCased(trimmed(text("SpeedFanType"_key, "Temperature")));
    const auto kind = type == "FAN" ? Sensor::Kind::Fan
        : type == "VOLTAGE"         ? Sensor::Kind::Voltage
                                    : Sensor::Kind::Temperature;
    auto number = integer("SpeedFanNumber"_key, 0);
    double value = 0;
    for (const auto& sensor : details ? details->sensors() : std::vector<Sensor>()) {
        if (sensor.kind == kind && number-- == 0) {
            value = sensor.value;
            const auto scale = upperCased(trimmed(text("SpeedFanScale"_key, "C")));
            if (kind == Sensor::Kind::Temperature && scale == "F")
                value = value * 9 / 5 + 32;
            else if (kind == Sensor::Kind::Temperature && scale == "K")
                value += 273.15;
        }
    }
    publishNumber(value);
}

} // namespace Ostrel
