#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Ostrel {

class BaseMeasure;
class MeasureTable;
class MeterTable;
class RuntimeExpressions;

/// Gives shapes with DynamicVariables their options with measure references resolved. Only what changed is resolved
/// again.
class DynamicOptions {
public:
    /// All must outlive this.
    DynamicOptions(const MeterTable& meters, const MeasureTable& measures, const RuntimeExpressions& expressions);

    /// Nothing for any other meter.
    void resolveDynamicOptions(std::size_t position);

private:
    struct Resolution {
        std::optional<std::uint64_t> optionsRevision;
        std::vector<const BaseMeasure*> sources;
        /// Of all sources together; each only grows.
        std::uint64_t valueRevisions = 0;
    };

    std::vector<const BaseMeasure*> findSources(const Options& options) const;

    const MeterTable& meters_;
    const MeasureTable& measures_;
    const RuntimeExpressions& expressions_;
    std::vector<Resolution> resolutions_;
};

} // namespace Ostrel
