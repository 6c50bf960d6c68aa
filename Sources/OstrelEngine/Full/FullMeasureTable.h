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

/// Every n-th update, first at once; negative: once.
class UpdateDivider {
public:
    /// A new number begins its count.
    void set(int divider);
    /// To be called once an update.
    bool isDue();
    /// The next update is due, whatever the count.
    void restart() { wait_ = 0; }

private:
    int divider_ = 1;
    /// Updates until the next that is due; negative: never again.
    int wait_ = 0;
};

/// The state of a measure: what options and bangs made of it, whichever spoke last.
struct FullMeasureEntry {
    /// Its section in LiveSections.
    std::size_t section = 0;
    UpdateDivider divider;
    bool isDisabled = false;
    bool isPaused = false;
    MeasureActionState actions;

    /// What was read from the options at this revision.
    std::uint64_t optionsRevision = ~std::uint64_t(0);
    std::string disabledText;
    std::string pausedText;
    std::string dividerText;
};

/// The measures of a skin in file order, which is the order of their updates. Filled once; positions stay.
class FullMeasureTable {
public:
    void add(std::unique_ptr<BaseMeasure> measure, std::size_t section);

    std::size_t count() const { return entries_.size(); }
    FullMeasureEntry& entry(std::size_t position) { return entries_[position]; }
    BaseMeasure& at(std::size_t position) const { return *measures_[position]; }
    std::optional<std::size_t> position(std::string_view name) const;
    /// The place of a measure of this table.
    std::optional<std::size_t> position(const BaseMeasure& measure) const;
    BaseMeasure* find(std::string_view name) const;
    const std::vector<std::unique_ptr<BaseMeasure>>& all() const { return measures_; }

private:
    std::vector<std::unique_ptr<BaseMeasure>> measures_;
    std::vector<FullMeasureEntry> entries_;
    CaseInsensitiveDictionary<std::size_t> positions_;
};

} // namespace Ostrel
