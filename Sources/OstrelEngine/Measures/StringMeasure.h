#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// A text in which `[Measure]` and `[Measure:%]` stand for the values of measures.
class StringMeasure final : public BaseMeasure {
public:
    using BaseMeasure::BaseMeasure;

    void update() override;
    void resolveMeasureReferences(std::weak_ptr<const MeasuresOwner> owner) override;

    /// A measure that a text was made from, and its state then.
    struct Source {
        const BaseMeasure* measure = nullptr;
        std::uint64_t revision = 0;
    };

private:
    bool isCurrent() const;

    std::weak_ptr<const MeasuresOwner> owner_;
    /// The `optionsRevision` that the last text was made at; absent before the first time.
    std::optional<std::uint64_t> readRevision_;
    std::vector<Source> sources_;
};

} // namespace Ostrel
