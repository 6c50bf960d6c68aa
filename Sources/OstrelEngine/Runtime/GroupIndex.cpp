#include "OstrelEngine/Runtime/GroupIndex.h"

#include "OstrelEngine/Runtime/GroupNames.h"
#include "OstrelEngine/Runtime/MeasureTable.h"
#include "OstrelEngine/Runtime/MeterTable.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

namespace {

/// Group names and options can be made up at run time; a skin that does so endlessly only pays with its own time.
constexpr std::size_t MaxRemembered = 512;

template <typename Map> void makeRoom(Map& map) {
    if (map.size() >= MaxRemembered)
        map.clear();
}

} // namespace

GroupIndex::Positions GroupIndex::meterIndices(std::string_view group) {
    return find(meterMembers_, meters_, group);
}

GroupIndex::Positions GroupIndex::measureIndices(std::string_view group) {
    return find(measureMembers_, measures_, group);
}

void GroupIndex::invalidateGroupMembershipCaches() {
    meterMembers_.clear();
    measureMembers_.clear();
}

template <typename Table>
GroupIndex::Positions GroupIndex::find(Members& members, const Table& table, std::string_view group) {
    auto name = GroupNames::normalizedGroupName(group);
    if (name.empty())
        return {};
    if (const auto found = members.find(name); found != members.end())
        return found->second;
    Positions positions;
    for (std::size_t i = 0; i < table.count(); ++i) {
        const auto groups = option(table.at(i).options(), "Group"_key);
        if (groups && belongs(*groups, name))
            positions.push_back(i);
    }
    makeRoom(members);
    return members.emplace(std::move(name), std::move(positions)).first->second;
}

bool GroupIndex::belongs(std::string_view groupOption, const std::string& group) {
    auto parsed = parsedGroups_.find(std::string(groupOption));
    if (parsed == parsedGroups_.end()) {
        makeRoom(parsedGroups_);
        parsed = parsedGroups_.emplace(groupOption, GroupNames::parseGroups(groupOption)).first;
    }
    return std::ranges::find(parsed->second, group) != parsed->second.end();
}

} // namespace Ostrel
