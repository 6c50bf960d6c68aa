#include "OstrelCLI/SkinInput.h"

#include "OstrelCore/Packages/SkinPathResolver.h"

namespace Ostrel {

SkinPaths skinPaths(Arguments arguments) {
    const std::vector<std::string> given(arguments.begin(), arguments.end());
    auto expansion = SkinPathResolver::resolve(given);
    for (const auto& path : expansion.unreadablePaths)
        printMessage("cannot read " + path);
    return {std::move(expansion.skinPaths), expansion.unreadablePaths.empty()};
}

} // namespace Ostrel
