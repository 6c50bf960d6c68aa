#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

struct PackFolders;

// Which skins of the library a text in an action means.
namespace ConfigNames {

/// The name of a config as skins carry it. A folder that came from the web often has not the name that its skins
/// expect: where the first component is no folder of the library, the rest is looked for below the pack's own root, and
/// then the whole.
std::string canonical(const PackFolders& folders, std::string_view config);
/// Whether two names mean one config: in any case, with either separator.
bool areSame(std::string_view a, std::string_view b);
/// The skin files of a config, absolute, in the order of their names.
std::vector<std::string> variants(const PackFolders& folders, std::string_view canonicalConfig);
/// The named one. Absent when there is none.
std::optional<std::string> variant(
    const PackFolders& folders, std::string_view canonicalConfig, std::string_view fileName);

} // namespace ConfigNames

} // namespace Ostrel
