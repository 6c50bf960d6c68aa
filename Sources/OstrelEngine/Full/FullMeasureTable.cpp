#include "OstrelEngine/Full/FullMeasureTable.h"

#include <utility>

namespace Ostrel {

void UpdateDivider::set(int divider) {
    if (divider == 0)
        divider = 1;
    if (divider == divider_)
        return;
    divider_ = divider;
    if (hasBegun_)
        wait_ = divider_ < 0 ? -1 : divider_ - 1;
}

bool UpdateDivider::isDue() {
    if (wait_ != 0) {
        if (wait_ > 0)
            --wait_;
        return false;
    }
    hasBegun_ = true;
    wait_ = divider_ < 0 ? -1 : divider_ - 1;
    return true;
}

void FullMeasureTable::add(std::unique_ptr<BaseMeasure> measure, std::size_t section) {
    positions_.insertIfAbsent(measure->name(), measures_.size());
    measures_.push_back(std::move(measure));
    entries_.emplace_back().section = section;
}

std::optional<std::size_t> FullMeasureTable::position(std::string_view name) const {
    const auto* found = positions_.find(name);
    return found ? std::optional(*found) : std::nullopt;
}

BaseMeasure* FullMeasureTable::find(std::string_view name) const {
    const auto* found = positions_.find(name);
    return found ? measures_[*found].get() : nullptr;
}

} // namespace Ostrel
