#include "OstrelEngine/Runtime/GroupNames.h"

#include "OstrelCore/Text/Text.h"

namespace Ostrel::GroupNames {

std::string normalizedGroupName(std::string_view text) {
    return upperCased(trimmed(text));
}

std::vector<std::string> parseGroups(std::string_view text) {
    std::vector<std::string> groups;
    for (const auto piece : split(text, '|')) {
        if (auto name = normalizedGroupName(piece); !name.empty())
            groups.push_back(std::move(name));
    }
    return groups;
}

} // namespace Ostrel::GroupNames
