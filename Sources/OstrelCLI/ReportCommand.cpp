#include "OstrelCLI/ReportCommand.h"

#include "OstrelCLI/DialectOptions.h"
#include "OstrelCLI/JSON.h"
#include "OstrelCLI/SkinInput.h"
#include "OstrelCore/Report/CompatReportFormatter.h"
#include "OstrelCore/Report/CompatScanner.h"
#include "OstrelDialect/PackReader.h"
#include "OstrelDialect/PackReport.h"

#include <algorithm>
#include <iostream>
#include <string_view>
#include <vector>

namespace Ostrel::ReportCommand {

namespace {

struct Reports {
    std::vector<CompatReport> reports;
    /// One for each report of the full dialect.
    std::vector<PackWants> wants;
    bool isComplete = true;
};

void addFullReport(const std::string& path, const DialectOptions& options, Reports& result) {
    const auto skin = readPackSkin(path, std::nullopt, options.root);
    if (!skin) {
        printMessage("cannot load " + path);
        result.isComplete = false;
        return;
    }
    result.reports.push_back(reportOf(*skin));
    result.wants.push_back(findWants(*skin));
}

/// The formatter's objects with what the full dialect adds.
std::string fullReportsJSON(const Reports& result) {
    auto reports = JSON::parse(CompatReportFormatter::formatJSON(result.reports));
    for (std::size_t i = 0; i < result.wants.size(); ++i) {
        const auto& wants = result.wants[i];
        reports[i]["dialect"] = "full";
        reports[i]["wants"]
            = {{"scripts", wants.scripts}, {"web", wants.web}, {"programs", wants.programs}, {"files", wants.files}};
    }
    return reports.dump(2, ' ', false, JSON::error_handler_t::replace);
}

Reports reportsOf(Arguments paths, const DialectOptions& options) {
    const auto input = skinPaths(paths);
    Reports result{{}, {}, input.isComplete};
    for (const auto& path : input.paths) {
        if (options.isFull) {
            addFullReport(path, options, result);
            continue;
        }
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
    const auto options = DialectOptions::parse(arguments);
    if (!options)
        return wrongUsage(Usage);
    std::vector<std::string_view> paths = options->rest;
    const bool isJSON = std::erase(paths, "--json") > 0;
    if (paths.empty() || std::ranges::any_of(paths, isOption))
        return wrongUsage(Usage);
    const auto result = reportsOf(paths, *options);
    if (isJSON)
        std::cout << (options->isFull ? fullReportsJSON(result) : CompatReportFormatter::formatJSON(result.reports))
                  << "\n";
    else
        printText(result.reports);
    return result.isComplete ? Done : InputFailed;
}

} // namespace Ostrel::ReportCommand
