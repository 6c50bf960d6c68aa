#include "OstrelEngine/Runtime/OptionResolver.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <string_view>

namespace Ostrel::OptionResolver {

namespace {

const StyleDefinition* styleNamed(std::string_view name, const std::vector<StyleDefinition>& styles) {
    const auto found = std::find_if(styles.begin(), styles.end(),
        [&](const StyleDefinition& style) { return equalsIgnoringCase(style.sectionName, name); });
    return found == styles.end() ? nullptr : &*found;
}

} // namespace

Options resolvedOptions(const MeterDefinition& definition, const std::vector<StyleDefinition>& styles) {
    if (!definition.meterStyleRef)
        return definition.allOptions;
    Options merged;
    bool foundStyle = false;
    for (const auto piece : splitDroppingEmpty(*definition.meterStyleRef, '|')) {
        const auto name = trimmedWhitespace(piece);
        if (name.empty())
            continue;
        if (const auto* style = styleNamed(name, styles)) {
            merged.merge(style->allOptions, false);
            foundStyle = true;
        }
    }
    if (!foundStyle)
        return definition.allOptions;
    merged.merge(definition.allOptions, false);
    return merged;
}

} // namespace Ostrel::OptionResolver
