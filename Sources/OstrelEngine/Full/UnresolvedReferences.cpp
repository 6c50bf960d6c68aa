#include "OstrelEngine/Full/UnresolvedReferences.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/Formula.h"
#include "OstrelDialect/LiteralMarks.h"
#include "OstrelEngine/Full/SkinScope.h"

#include <algorithm>

namespace Ostrel {

namespace {

/// The next bracket behind the one at `open`; npos when there is none.
std::size_t closing(std::string_view text, std::size_t open) {
    return text.find_first_of("[]", open + 1);
}

bool isSection(std::string_view inside, const SkinScope& scope, const FormulaNames& measures) {
    if (inside.starts_with('&'))
        inside.remove_prefix(1);
    const auto colon = inside.find(':');
    const auto name = inside.substr(0, colon);
    if (name.empty() || name.starts_with('*'))
        return false;
    // A meter has no value but the sides of its box.
    return measures.place(name).has_value() || (colon != std::string_view::npos && scope.section(name, "X"));
}

/// "%APPDATA%" and its like: shorter ones are signs of a time format.
bool isEnvironmentName(std::string_view name) {
    constexpr std::size_t Shortest = 4;
    return name.size() >= Shortest && std::ranges::all_of(name, [](char c) {
        const char upper = asciiUpper(c);
        return (upper >= 'A' && upper <= 'Z') || c == '_';
    });
}

} // namespace

bool leavesReferences(std::string_view text, const SkinScope& scope, const FormulaNames& measures) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (const auto end = LiteralMarks::regionEnd(text, i); end != i) {
            i = end - 1;
            continue;
        }
        if (text[i] == '[') {
            const auto end = closing(text, i);
            if (end != std::string_view::npos && isSection(text.substr(i + 1, end - i - 1), scope, measures))
                return true;
        } else if (text[i] == '%') {
            const auto end = text.find('%', i + 1);
            if (end != std::string_view::npos && isEnvironmentName(text.substr(i + 1, end - i - 1)))
                return true;
        }
    }
    return false;
}

} // namespace Ostrel
