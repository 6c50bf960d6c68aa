#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Full/FullMeasureActions.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Every n-th update, first at once; negative: once. 0 is 1.
class UpdateDivider {
public:
    /// Another number begins its count.
    void set(int divider);
    /// To be called once an update.
    bool isDue();
    /// The next update is due, whatever the count.
    void restart() { wait_ = 0; }

private:
    int divider_ = 1;
    /// Updates that are not due before the next that is; negative: none is ever due again.
    int wait_ = 0;
    bool hasBegun_ = false;
};

/// The state of a measure: what options and bangs made of it, whichever spoke last.
struct FullMeasureEntry {
    /// Its section in LiveSections.
    std::size_t section = 0;
    UpdateDivider divider;
    bool isDisabled = false;
    bool isPaused = false;
    /// Normalized.
    std::vector<std::string> groups;
    MeasureActionState actions;

    /// The options were read at this revision; absent before the first time.
    std::optional<std::uint64_t> optionsRevision;
    std::optional<std::string> disabledText;
    std::optional<std::string> pausedText;
};

/// The measures of a skin in file order, which is the order of their updates. Filled once; positions stay.
class FullMeasureTable {
public:
    void add(std::unique_ptr<BaseMeasure> measure, std::size_t section);

    std::size_t count() const { return entries_.size(); }
    FullMeasureEntry& entry(std::size_t position) { return entries_[position]; }
    const FullMeasureEntry& entry(std::size_t position) const { return entries_[position]; }
    BaseMeasure& at(std::size_t position) const { return *measures_[position]; }
    std::optional<std::size_t> position(std::string_view name) const;
    /// Null when there is none.
    BaseMeasure* find(std::string_view name) const;
    const std::vector<std::unique_ptr<BaseMeasure>>& all() const { return measures_; }

private:
    std::vector<std::unique_ptr<BaseMeasure>> measures_;
    std::vector<FullMeasureEntry> entries_;
    CaseInsensitiveDictionary<std::size_t> positions_;
};

} // namespace Ostrel
