#include "OstrelEngine/Runtime/MeterTable.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Runtime/BracketReferences.h"

#include <utility>

namespace Ostrel {

void MeterTable::add(std::shared_ptr<MeterRenderer> meter, bool isVisible) {
    positions_.insertIfAbsent(meter->name(), meters_.size());
    const std::size_t first = *positions_.find(meter->name());
    firstOfName_.push_back(first);
    isVisible_.push_back(isVisible);
    isVisible_[first] = isVisible;
    meters_.push_back(std::move(meter));
}

std::optional<std::size_t> MeterTable::position(std::string_view name) const {
    const auto* found = positions_.find(name);
    return found ? std::optional(*found) : std::nullopt;
}

bool MeterTable::isVisible(std::string_view name) const {
    const auto found = position(name);
    return !found || isVisible(*found);
}

bool MeterTable::setVisible(std::string_view name, bool isVisible) {
    const auto found = position(name);
    if (!found || isVisible_[*found] == isVisible)
        return false;
    isVisible_[*found] = isVisible;
    return true;
}

std::map<std::string, bool> MeterTable::visibility() const {
    std::map<std::string, bool> result;
    for (const auto& [name, position, hash] : positions_)
        result[upperCased(name)] = isVisible_[position];
    return result;
}

std::optional<double> MeterTable::coordinate(std::string_view name, char property) const {
    const auto found = position(name);
    if (!found)
        return std::nullopt;
    const auto& frame = meters_[*found]->frame();
    switch (property) {
    case 'X':
        return frame.x;
    case 'Y':
        return frame.y;
    case 'W':
        return frame.w;
    case 'H':
        return frame.h;
    default:
        return std::nullopt;
    }
}

std::string MeterTable::substituteMeterCoordinateReferences(std::string_view text) const {
    return BracketReferences::substituteCoordinates(text,
        [this](std::string_view name, char property) { return formatNumeric(coordinate(name, property).value_or(0)); });
}

} // namespace Ostrel
