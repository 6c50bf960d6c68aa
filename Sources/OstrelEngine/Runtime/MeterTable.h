#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Meters/MeterProtocol.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The meters of a skin in file order, which is the order of drawing and layout, and which of them are shown. Filled
/// once; positions stay. Meters of one name share its visibility.
class MeterTable {
public:
    void add(std::shared_ptr<MeterRenderer> meter, bool isVisible);

    std::size_t count() const { return meters_.size(); }
    const std::vector<std::shared_ptr<MeterRenderer>>& all() const { return meters_; }
    MeterRenderer& at(std::size_t position) const { return *meters_[position]; }
    const std::shared_ptr<MeterRenderer>& shared(std::size_t position) const { return meters_[position]; }
    /// The place of the first meter of this name, in any case.
    std::optional<std::size_t> position(std::string_view name) const;

    bool isVisible(std::size_t position) const { return isVisible_[firstOfName_[position]]; }
    /// True when there is no such meter.
    bool isVisible(std::string_view name) const;
    /// False when there is no such meter or nothing changed.
    bool setVisible(std::string_view name, bool isVisible);
    /// By upper-cased name.
    std::map<std::string, bool> visibility() const;

    /// X, Y, W or H of the first meter of this name; absent for any other property and an unknown meter.
    std::optional<double> coordinate(std::string_view name, char property) const;
    /// The text with each "[Meter:X]" replaced by that number, or by 0 where there is none.
    std::string substituteMeterCoordinateReferences(std::string_view text) const;

private:
    std::vector<std::shared_ptr<MeterRenderer>> meters_;
    std::vector<std::size_t> firstOfName_;
    /// Counts only at the first meter of a name.
    std::vector<bool> isVisible_;
    CaseInsensitiveDictionary<std::size_t> positions_;
};

} // namespace Ostrel
