#include "OstrelGUI/OpenArguments.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"

#include <filesystem>

namespace Ostrel {

OpenArguments OpenArguments::sort(std::span<const std::string> arguments) {
    OpenArguments sorted;
    for (const auto& argument : arguments) {
        // An empty one would stand for the working folder.
        auto path = argument.empty() ? std::string() : standardizedPath(argument);
        std::error_code failed;
        const auto extension = pathExtension(path);
        if (std::filesystem::is_directory(path, failed))
            sorted.collections.push_back(std::move(path));
        else if (!std::filesystem::exists(path, failed))
            sorted.unreadable.push_back(argument);
        else if (equalsIgnoringCase(extension, "ini"))
            sorted.skins.push_back(std::move(path));
        else if (equalsIgnoringCase(extension, "rmskin"))
            sorted.collections.push_back(std::move(path));
        else
            sorted.unreadable.push_back(argument);
    }
    return sorted;
}

std::vector<std::string> OpenArguments::paths() const {
    auto all = skins;
    all.insert(all.end(), collections.begin(), collections.end());
    return all;
}

} // namespace Ostrel
