#include "OstrelEngine/Full/FullMeterTable.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace Ostrel {

namespace {

/// More bound measures than this are no skin's.
constexpr int MaxBindings = 10000;

/// The number of a key like "MeasureName3", from 1 on; absent for another key.
std::optional<int> bindingNumber(std::string_view key) {
    constexpr std::string_view Name = "MeasureName";
    if (equalsIgnoringCase(key, "SecondaryMeasureName"))
        return 2;
    if (key.size() < Name.size() || !equalsIgnoringCase(key.substr(0, Name.size()), Name))
        return std::nullopt;
    const auto digits = key.substr(Name.size());
    if (digits.empty())
        return 1;
    int number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isNumber = error == std::errc() && end == digits.data() + digits.size();
    return isNumber && number > 0 && number <= MaxBindings ? std::optional(number) : std::nullopt;
}

} // namespace

void FullMeterTable::add(std::shared_ptr<FullMeter> meter, std::size_t section) {
    positions_.insertIfAbsent(meter->name(), entries_.size());
    meters_.push_back(meter);
    auto& entry = entries_.emplace_back();
    entry.meter = std::move(meter);
    entry.section = section;
}

std::optional<std::size_t> FullMeterTable::position(std::string_view name) const {
    const auto* found = positions_.find(name);
    return found ? std::optional(*found) : std::nullopt;
}

void FullMeterTable::bind(std::size_t position, const FullMeasureTable& measures) {
    auto& entry = entries_[position];
    entry.bindings.clear();
    for (const auto& [key, name, hash] : entry.meter->options()) {
        const auto number = bindingNumber(key);
        if (!number)
            continue;
        const auto place = static_cast<std::size_t>(*number) - 1;
        if (entry.bindings.size() <= place)
            entry.bindings.resize(place + 1);
        if (!entry.bindings[place])
            entry.bindings[place] = measures.position(trimmed(name));
    }
    MeasureValue empty;
    empty.preferStringValue = true;
    entry.held.assign(entry.bindings.size(), empty);
    entry.heldRevisions.assign(entry.bindings.size(), ~std::uint64_t(0));
}

bool FullMeterTable::holdValues(std::size_t position, const FullMeasureTable& measures) {
    auto& entry = entries_[position];
    bool hasChanged = false;
    for (std::size_t i = 0; i < entry.bindings.size(); ++i) {
        if (!entry.bindings[i])
            continue;
        const auto& measure = measures.at(*entry.bindings[i]);
        if (entry.heldRevisions[i] == measure.valueRevision())
            continue;
        entry.heldRevisions[i] = measure.valueRevision();
        entry.held[i] = measure.value();
        hasChanged = true;
    }
    return hasChanged;
}

} // namespace Ostrel
