#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What bangs made of a measure.
struct MeasureControlState {
    bool forcedDisabled = false;
    bool forcedEnabled = false;
    bool paused = false;

    friend bool operator==(const MeasureControlState&, const MeasureControlState&) = default;
};

/// The live measures of a skin in file order, which is the order of their updates. Filled once; positions stay.
class MeasureTable {
public:
    /// A later measure of the same name takes the place of the earlier.
    void add(std::unique_ptr<BaseMeasure> measure);

    std::size_t count() const { return measures_.size(); }
    const std::vector<std::unique_ptr<BaseMeasure>>& all() const { return measures_; }
    BaseMeasure& at(std::size_t position) const { return *measures_[position]; }
    MeasureControlState& controls(std::size_t position) { return controls_[position]; }

    /// Recomputes a measure's value; true when it has changed.
    bool update(std::size_t position);

    /// The place of the measure of this name, in any case.
    std::optional<std::size_t> position(std::string_view name) const;
    /// Null when there is none.
    BaseMeasure* find(std::string_view name) const;

private:
    std::vector<std::unique_ptr<BaseMeasure>> measures_;
    std::vector<MeasureControlState> controls_;
    CaseInsensitiveDictionary<std::size_t> positions_;
};

} // namespace Ostrel
