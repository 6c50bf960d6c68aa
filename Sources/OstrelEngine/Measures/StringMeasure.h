#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

class MeasureHost;

/// A text in which `[Measure]` and `[Measure:%]` stand for the values of measures.
class StringMeasure final : public BaseMeasure {
public:
    StringMeasure(const MeasureDefinition& definition, std::string skinPath, const MeasureHost& host);

    void update() override;

    /// A measure that a text was made from, and its state then.
    struct Source {
        const BaseMeasure* measure = nullptr;
        std::uint64_t revision = 0;
    };

private:
    bool isCurrent() const;

    const MeasureHost& host_;
    /// The `optionsRevision` that the last text was made at; absent before the first time.
    std::optional<std::uint64_t> readRevision_;
    std::vector<Source> sources_;
};

} // namespace Ostrel
