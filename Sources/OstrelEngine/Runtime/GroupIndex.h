#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Ostrel {

class MeasureTable;
class MeterTable;

/// The members of the groups that the option Group names, found once and kept until a Group changes.
class GroupIndex {
public:
    using Positions = std::vector<std::size_t>;

    /// Both must outlive this.
    GroupIndex(const MeterTable& meters, const MeasureTable& measures)
        : meters_(meters)
        , measures_(measures) { }

    /// Positions in file order. A copy: what is done to the members may change their groups.
    Positions meterIndices(std::string_view group);
    Positions measureIndices(std::string_view group);

    void invalidateGroupMembershipCaches();

private:
    using Members = std::unordered_map<std::string, Positions>;

    template <typename Table> Positions find(Members& members, const Table& table, std::string_view group);
    bool belongs(std::string_view groupOption, const std::string& group);

    const MeterTable& meters_;
    const MeasureTable& measures_;
    Members meterMembers_;
    Members measureMembers_;
    /// By the text of the option.
    std::unordered_map<std::string, std::vector<std::string>> parsedGroups_;
};

} // namespace Ostrel
