#include "OstrelEngine/Measures/Full/FullUsageMonitorMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/Full/FullMeasureFactory.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace Ostrel {

namespace {

struct Alias {
    std::string_view name;
    std::string_view category;
    std::string_view counter;
};

constexpr Alias Aliases[] = {{"CPU", "Process", "% Processor Time"}, {"RAM", "Process", "Working Set - Private"},
    {"RAMSHARED", "Process", "Working Set"}, {"IO", "Process", "IO Data Bytes/sec"},
    {"IOREAD", "Process", "IO Read Bytes/sec"}, {"IOWRITE", "Process", "IO Write Bytes/sec"},
    {"GPU", "GPU Engine", "Utilization Percentage"}, {"VRAM", "GPU Process Memory", "Dedicated Usage"},
    {"VRAMSHARED", "GPU Process Memory", "Shared Usage"}};

std::vector<std::string> names(std::string_view list, char separator) {
    std::vector<std::string> result;
    for (const auto name : splitDroppingEmpty(list, separator))
        result.emplace_back(trimmed(name));
    return result;
}

} // namespace

FullUsageMonitorMeasure::FullUsageMonitorMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host) {
    const auto plugin = FullMeasureFactory::pluginName(definition.pluginName.value_or(""));
    plugin_ = plugin == "PERFMON" ? Plugin::PerfMon
        : plugin == "ADVANCEDCPU" ? Plugin::AdvancedCPU
                                  : Plugin::UsageMonitor;
}

void FullUsageMonitorMeasure::readOptions() {
    switch (plugin_) {
    case Plugin::UsageMonitor:
        return readUsageMonitor();
    case Plugin::PerfMon:
        return readPerfMon();
    case Plugin::AdvancedCPU:
        return readAdvancedCPU();
    }
}

void FullUsageMonitorMeasure::readUsageMonitor() {
    category_ = text("Category"_key);
    counter_ = text("Counter"_key);
    const auto alias = upperCased(trimmed(text("Alias"_key)));
    if (category_.empty() || counter_.empty()) {
        const auto row = std::ranges::find(Aliases, alias, &Alias::name);
        category_ = row == std::end(Aliases) ? "" : row->category;
        counter_ = row == std::end(Aliases) ? "" : row->counter;
    }
    const bool isCPU = alias == "CPU";
    index_ = std::max(-1, integer("Index"_key, 0));
    const auto name = option("Name"_key);
    instance_ = name && !name->empty() ? std::optional<std::string>(*name) : std::nullopt;
    allowed_ = names(text("Whitelist"_key), '|');
    blocked_ = names(text("Blacklist"_key, "_Total|Idle"), '|');
    joinsNames_ = isOn("Rollup"_key, true);
    isPercent_ = isOn("Percent"_key, isCPU);
    isRaw_ = isOn("RawValue"_key, false);
    isBounded_ = isPercent_ || isCPU || alias == "GPU";
}

void FullUsageMonitorMeasure::readPerfMon() {
    category_ = text("PerfMonObject"_key);
    counter_ = text("PerfMonCounter"_key);
    const auto instance = text("PerfMonInstance"_key);
    instance_ = instance.empty() ? std::nullopt : std::optional<std::string>(instance);
    blocked_ = {"_Total"};
    showsDifference_ = isOn("PerfMonDifference"_key, true);
    isRaw_ = true;
}

void FullUsageMonitorMeasure::readAdvancedCPU() {
    category_ = "Process";
    counter_ = "% Processor Time";
    allowed_ = names(text("CPUInclude"_key), ';');
    blocked_ = names(text("CPUExclude"_key), ';');
    const int top = integer("TopProcess"_key, 0);
    index_ = top > 0 ? 1 : 0;
    showsTop_ = top == 2;
}

bool FullUsageMonitorMeasure::isWanted(std::string_view instance) const {
    const auto holds = [instance](const std::vector<std::string>& list) {
        return std::ranges::any_of(list, [instance](const auto& name) { return equalsIgnoringCase(name, instance); });
    };
    return allowed_.empty() ? !holds(blocked_) : holds(allowed_);
}

std::vector<UsageInstance> FullUsageMonitorMeasure::chosen(const std::vector<UsageInstance>& all) const {
    std::vector<UsageInstance> result;
    std::map<std::string_view, std::size_t> places;
    for (const auto& instance : all) {
        if (!isWanted(instance.name))
            continue;
        const auto [place, isNew] = places.try_emplace(instance.name, result.size());
        if (isNew || !joinsNames_) {
            result.push_back(instance);
            continue;
        }
        result[place->second].value += instance.value;
        result[place->second].raw += instance.raw;
    }
    return result;
}

void FullUsageMonitorMeasure::update() {
    if (optionsDidChange())
        readOptions();
    const auto* all = sampler_->instances(category_, counter_, host().platform());
    if (!all) {
        host().log(LogLevel::Warning, name(), "Unknown counter: " + category_ + " / " + counter_);
        return publishText("", 0);
    }
    publishInstance(*all);
}

void FullUsageMonitorMeasure::publishInstance(const std::vector<UsageInstance>& all) {
    const auto valueOf = [this](const UsageInstance& instance) { return isRaw_ ? instance.raw : instance.value; };
    if (instance_ && *instance_ != "_Total") {
        double sum = 0;
        for (const auto& instance : all) {
            if (instance.name == *instance_ || (plugin_ == Plugin::PerfMon && instance.name.empty()))
                sum += valueOf(instance);
        }
        return publishCounter(*instance_, sum);
    }
    // A total of its own stands for the sum, which would count it twice.
    const auto total = std::ranges::find(all, std::string_view("_Total"), &UsageInstance::name);
    if (total != all.end() && (instance_ || (index_ == 0 && allowed_.empty())))
        return publishCounter(instance_ ? "_Total" : "Total", valueOf(*total));
    auto instances = chosen(all);
    double sum = 0;
    for (const auto& instance : instances)
        sum += valueOf(instance);
    if (instance_ || index_ == 0)
        return publishCounter("Total", sum);
    if (index_ < 0)
        return publishCounter("Average", instances.empty() ? 0 : sum / static_cast<double>(instances.size()));
    const auto position = static_cast<std::size_t>(index_) - 1;
    if (position >= instances.size())
        return publishCounter("", 0);
    const auto nth = instances.begin() + static_cast<std::ptrdiff_t>(position);
    std::ranges::nth_element(instances, nth, [&](const UsageInstance& a, const UsageInstance& b) {
        return valueOf(a) != valueOf(b) ? valueOf(a) > valueOf(b) : a.name < b.name;
    });
    const double value = valueOf(*nth);
    publishCounter(value == 0 ? "" : nth->name, value);
}

void FullUsageMonitorMeasure::publishCounter(std::string_view text, double number) {
    if (showsDifference_) {
        const auto before = std::exchange(before_, number);
        number = before ? number - *before : 0;
    }
    // Shares of the processor time count each core as a hundred.
    if (isPercent_ && counter_ == "% Processor Time" && category_ == "Process") {
        const auto cores = host().platform().hostStatistics.processors().size();
        number = cores > 1 ? std::min(100.0, number / static_cast<double>(cores - 1)) : number;
    }
    if (plugin_ != Plugin::UsageMonitor)
        return showsTop_ ? publishText(text, number) : publishNumber(number);
    if (isBounded_)
        publishText(text, number, 0, 100);
    else
        publishText(text, number);
}

} // namespace Ostrel
