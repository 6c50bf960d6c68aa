#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace Ostrel {

class BaseMeasure;
class MeasureTable;
class MeterTable;

/// The measures whose values each meter shows. They are looked up once for every change of the meter's options.
class MeterBindings {
public:
    /// Both must outlive this.
    MeterBindings(const MeterTable& meters, const MeasureTable& measures);

    /// The values of the moment, in binding order. The view lives until the next call for the same meter.
    MeasureValues values(std::size_t position);

private:
    struct Binding {
        std::optional<std::uint64_t> optionsRevision;
        /// Null stands for a measure that an image names and the skin does not have.
        std::vector<const BaseMeasure*> sources;
        std::vector<MeasureValue> values;
    };

    std::vector<const BaseMeasure*> findSources(const Options& options) const;
    std::vector<const BaseMeasure*> findImageSources(std::string_view imageName) const;

    const MeterTable& meters_;
    const MeasureTable& measures_;
    std::vector<Binding> bindings_;
};

} // namespace Ostrel
