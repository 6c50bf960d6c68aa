#include "OstrelCLI/TextInput.h"

#include "OstrelCore/Documents/FileProvider.h"

#include <iostream>
#include <iterator>

namespace Ostrel {

std::optional<std::string> readTextInput(const std::string& path) {
    if (path != "-")
        return DiskFileProvider().contentsOfFile(path);
    return std::string(std::istreambuf_iterator<char>(std::cin), {});
}

} // namespace Ostrel
