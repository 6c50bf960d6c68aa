#include "OstrelCLI/ListCommand.h"

#include "OstrelCLI/SkinInput.h"

#include <algorithm>
#include <iostream>
#include <string>

namespace Ostrel::ListCommand {

int run(Arguments arguments) {
    if (arguments.empty() || std::ranges::any_of(arguments, isOption))
        return wrongUsage(Usage);
    const auto input = skinPaths(arguments);
    std::string text;
    for (const auto& path : input.paths)
        text.append(path).append("\n");
    std::cout << text;
    return input.isComplete ? Done : InputFailed;
}

} // namespace Ostrel::ListCommand
