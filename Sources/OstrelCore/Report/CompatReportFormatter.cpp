#include "OstrelCore/Report/CompatReportFormatter.h"

#include "OstrelCore/Text/Numbers.h"

#include <nlohmann/json.hpp>

#include <vector>

namespace Ostrel::CompatReportFormatter {

namespace {

using nlohmann::json;

std::string_view tag(CompatFinding::Severity severity) {
    switch (severity) {
    case CompatFinding::Severity::incompatible:
        return "[INCOMPATIBLE]";
    case CompatFinding::Severity::warning:
        return "[WARNING]";
    case CompatFinding::Severity::info:
        return "[INFO]";
    }
    return "";
}

void appendFindings(std::string& text, const std::vector<CompatFinding>& findings) {
    if (findings.empty()) {
        text += "No compatibility issues found.\n";
        return;
    }
    text += "Findings (" + formatInteger(static_cast<std::int64_t>(findings.size())) + "):\n\n";
    for (const auto& finding : findings) {
        text.append(tag(finding.severity)).append(" ").append(finding.category);
        if (finding.sectionName)
            text.append(" in [").append(*finding.sectionName).append("]");
        text.append(": ").append(finding.message).append("\n");
    }
}

json toJSON(const CompatFinding& finding) {
    json object
        = {{"severity", rawText(finding.severity)}, {"category", finding.category}, {"message", finding.message}};
    if (finding.sectionName)
        object["section"] = *finding.sectionName;
    return object;
}

json toJSON(const CompatReport& report) {
    auto findings = json::array();
    for (const auto& finding : report.findings)
        findings.push_back(toJSON(finding));
    json object = {{"skinPath", report.skinPath}, {"verdict", rawText(report.verdict)},
        {"incompatibleCount", report.incompatibleCount()}, {"warningCount", report.warningCount()},
        {"findings", std::move(findings)}};
    if (report.skinName)
        object["skinName"] = *report.skinName;
    return object;
}

std::string pretty(const json& value) {
    return value.dump(2, ' ', false, json::error_handler_t::replace);
}

} // namespace

std::string formatText(const CompatReport& report) {
    std::string text = "Compatibility Report\n====================\n";
    text += "Skin: " + report.skinName.value_or("Unknown") + "\n";
    text += "File: " + report.skinPath + "\n";
    text.append("Verdict: ").append(rawText(report.verdict)).append("\n\n");
    appendFindings(text, report.findings);
    text += "\nSummary: " + formatInteger(static_cast<std::int64_t>(report.incompatibleCount())) + " incompatible, "
        + formatInteger(static_cast<std::int64_t>(report.warningCount())) + " warnings";
    return text;
}

std::string formatJSON(const CompatReport& report) {
    return pretty(toJSON(report));
}

std::string formatJSON(std::span<const CompatReport> reports) {
    auto array = json::array();
    for (const auto& report : reports)
        array.push_back(toJSON(report));
    return pretty(array);
}

} // namespace Ostrel::CompatReportFormatter
