#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/UsageSampler.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The value of a system counter, summed or for one instance, whose name is the text. Also the old plugins that ask for
/// counters by other options.
class FullUsageMonitorMeasure final : public FullMeasure {
public:
    FullUsageMonitorMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

    void update() override;

private:
    enum class Plugin { UsageMonitor, PerfMon, AdvancedCPU };

    void readOptions();
    void readUsageMonitor();
    void readPerfMon();
    void readAdvancedCPU();
    bool isWanted(std::string_view instance) const;
    /// Filtered, joined by name, the largest first.
    std::vector<UsageInstance> chosen(const std::vector<UsageInstance>& all) const;
    void publishInstance(const std::vector<UsageInstance>& all);
    void publishCounter(std::string_view text, double number);

    Plugin plugin_;
    std::shared_ptr<UsageSampler> sampler_ = UsageSampler::shared();
    std::string category_;
    std::string counter_;
    /// 0 the sum, -1 the mean, above the n-th largest.
    int index_ = 0;
    std::optional<std::string> instance_;
    std::vector<std::string> allowed_;
    std::vector<std::string> blocked_;
    bool joinsNames_ = true;
    bool isPercent_ = false;
    bool isRaw_ = false;
    bool showsDifference_ = false;
    bool showsTop_ = false;
    bool isBounded_ = false;
    std::optional<double> before_;
};

} // namespace Ostrel
