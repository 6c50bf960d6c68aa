#include "OstrelCLI/ReportCommand.h"

#include "OstrelCLI/SkinInput.h"
#include "OstrelCore/Report/CompatReportFormatter.h"
#include "OstrelCore/Report/CompatScanner.h"

#include <algorithm>
#include <iostream>
#include <string_view>
#include <vector>

namespace Ostrel::ReportCommand {

namespace {

struct Reports {
    std::vector<CompatReport> reports;
    bool isComplete = true;
};

Reports reportsOf(Arguments paths) {
    const auto input = skinPaths(paths);
    Reports result{{}, input.isComplete};
    for (const auto& path : input.paths) {
        DiagnosticCollector diagnostics;
        if (const auto config = loadSkin(path, diagnostics))
            result.reports.push_back(CompatScanner::scan(*config));
        else
            result.isComplete = false;
    }
    return result;
}

void printText(const std::vector<CompatReport>& reports) {
    std::string_view separator;
    for (const auto& report : reports) {
        std::cout << separator << CompatReportFormatter::formatText(report) << "\n";
        separator = "\n";
    }
}

} // namespace

int run(Arguments arguments) {
    std::vector<std::string_view> paths(arguments.begin(), arguments.end());
    const bool isJSON = std::erase(paths, "--json") > 0;
    if (paths.empty() || std::ranges::any_of(paths, isOption))
        return wrongUsage(Usage);
    const auto result = reportsOf(paths);
    if (isJSON)
        std::cout << CompatReportFormatter::formatJSON(result.reports) << "\n";
    else
        printText(result.reports);
    return result.isComplete ? Done : InputFailed;
}

} // namespace Ostrel::ReportCommand
