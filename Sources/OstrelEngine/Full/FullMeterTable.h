#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Full/FullMeasureTable.h"
#include "OstrelEngine/Meters/Full/FullMeter.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// A meter with its state: what options and bangs made of it, whichever spoke last.
struct FullMeterEntry {
    std::shared_ptr<FullMeter> meter;
    /// Its section in LiveSections.
    std::size_t section = 0;
    UpdateDivider divider;
    bool isHidden = false;
    /// Normalized.
    std::vector<std::string> groups;
    std::string onUpdateAction;
    /// The measures of MeasureName, MeasureName2, ...: absent for a number that is missing and an unknown measure.
    std::vector<std::optional<std::size_t>> bindings;
    /// What the last update took, and what the measures were at.
    std::vector<MeasureValue> held;
    std::vector<std::uint64_t> heldRevisions;
    /// The options that the last update took; absent before the first.
    std::optional<std::uint64_t> updatedRevision;

    /// The options were read at this revision; absent before the first time.
    std::optional<std::uint64_t> optionsRevision;
    std::optional<std::string> hiddenText;
};

/// The meters of a skin in file order, which is the order of updates, layout and drawing. Filled once; positions stay.
class FullMeterTable {
public:
    void add(std::shared_ptr<FullMeter> meter, std::size_t section);

    std::size_t count() const { return entries_.size(); }
    FullMeterEntry& entry(std::size_t position) { return entries_[position]; }
    const FullMeterEntry& entry(std::size_t position) const { return entries_[position]; }
    FullMeter& at(std::size_t position) const { return *entries_[position].meter; }
    std::optional<std::size_t> position(std::string_view name) const;
    const std::vector<std::shared_ptr<MeterRenderer>>& all() const { return meters_; }

    /// Reads the names of measures from the meter's options.
    void bind(std::size_t position, const FullMeasureTable& measures);
    /// Takes over the present values; true when one has changed.
    bool holdValues(std::size_t position, const FullMeasureTable& measures);

private:
    std::vector<FullMeterEntry> entries_;
    std::vector<std::shared_ptr<MeterRenderer>> meters_;
    CaseInsensitiveDictionary<std::size_t> positions_;
};

} // namespace Ostrel
