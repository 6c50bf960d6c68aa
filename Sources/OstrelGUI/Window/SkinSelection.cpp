#include "OstrelGUI/Window/SkinSelection.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"

#include <filesystem>
#include <system_error>

namespace Ostrel::SkinSelection {

bool isValidSelection(const std::string& path) {
    std::error_code failure;
    if (std::filesystem::is_directory(path, failure))
        return true;
    const std::string extension = pathExtension(path);
    return equalsIgnoringCase(extension, "ini") || equalsIgnoringCase(extension, "rmskin");
}

bool shouldAutoRenderSelection(std::span<const std::string> paths) {
    return paths.size() == 1 && equalsIgnoringCase(pathExtension(paths.front()), "ini");
}

} // namespace Ostrel::SkinSelection
