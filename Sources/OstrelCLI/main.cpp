#include "OstrelCLI/CalcCommand.h"
#include "OstrelCLI/Command.h"
#include "OstrelCLI/DialectOptions.h"
#include "OstrelCLI/InspectCommand.h"
#include "OstrelCLI/ListCommand.h"
#include "OstrelCLI/RenderCommand.h"
#include "OstrelCLI/ReportCommand.h"
#include "OstrelCLI/TraceCommand.h"

#include <array>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

namespace {

constexpr std::array Commands = {
    Command{"calc", CalcCommand::Usage, CalcCommand::run},
    Command{"inspect", InspectCommand::Usage, InspectCommand::run},
    Command{"list", ListCommand::Usage, ListCommand::run},
    Command{"render", RenderCommand::Usage, RenderCommand::run},
    Command{"report", ReportCommand::Usage, ReportCommand::run},
    Command{"trace", TraceCommand::Usage, TraceCommand::run},
};

constexpr std::string_view Usage = "ostrel COMMAND [ARGUMENT...]";

void printHelp() {
    std::cout << "usage: " << Usage << "\n\n";
    for (const auto& command : Commands)
        std::cout << "  " << command.usage << "\n";
    std::cout << "\n`ostrel COMMAND --help` shows one command.\n";
    std::cout << "All but list take first " << DialectOptions::Usage << "\n";
}

int run(Arguments arguments) {
    if (arguments.empty())
        return wrongUsage(Usage);
    const auto name = arguments.front();
    if (name == "--help") {
        printHelp();
        return Done;
    }
    if (name == "--version") {
        std::cout << "ostrel " << OSTREL_VERSION << "\n";
        return Done;
    }
    for (const auto& command : Commands) {
        if (command.name != name)
            continue;
        const auto rest = arguments.subspan(1);
        if (!rest.empty() && rest.front() == "--help") {
            std::cout << "usage: " << command.usage << "\n";
            return Done;
        }
        return command.run(rest);
    }
    return wrongUsage(Usage);
}

} // namespace

int wrongUsage(std::string_view usage) {
    printMessage("usage: " + std::string(usage));
    return WrongUsage;
}

bool isOption(std::string_view argument) {
    return argument.starts_with("--");
}

} // namespace Ostrel

int main(int count, char** values) {
    const std::vector<std::string_view> arguments(values + 1, values + count);
    const int status = Ostrel::run(arguments);
    std::cout.flush();
    return status;
}
