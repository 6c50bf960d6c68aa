#include "OstrelEngine/Runtime/MeasureTable.h"

#include <cmath>
#include <utility>

namespace Ostrel {

namespace {

/// NaN differs from itself, so a value that holds one counts as changed by every update.
bool holdsNaN(const MeasureValue& value) {
    return std::isnan(value.numericValue) || std::isnan(value.minValue) || std::isnan(value.maxValue);
}

} // namespace

void MeasureTable::add(std::unique_ptr<BaseMeasure> measure) {
    if (const auto earlier = position(measure->name())) {
        measures_[*earlier] = std::move(measure);
        return;
    }
    positions_.set(measure->name(), measures_.size());
    measures_.push_back(std::move(measure));
    controls_.emplace_back();
}

bool MeasureTable::update(std::size_t position) {
    auto& measure = at(position);
    const auto previous = measure.valueRevision();
    measure.update();
    return measure.valueRevision() != previous || holdsNaN(measure.value());
}

std::optional<std::size_t> MeasureTable::position(std::string_view name) const {
    const auto* found = positions_.find(name);
    return found ? std::optional(*found) : std::nullopt;
}

BaseMeasure* MeasureTable::find(std::string_view name) const {
    const auto* found = positions_.find(name);
    return found ? measures_[*found].get() : nullptr;
}

} // namespace Ostrel
