#include "OstrelCore/Report/CompatScanner.h"

#include "OstrelCore/Report/CompatPatterns.h"
#include "OstrelCore/Report/KnownTypes.h"
#include "OstrelCore/Text/Text.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel::CompatScanner {

namespace {

using Findings = std::vector<CompatFinding>;
using Severity = CompatFinding::Severity;

void add(Findings& findings, Severity severity, std::string_view category, std::string message,
    const std::string& sectionName) {
    findings.push_back({severity, std::string(category), std::move(message), sectionName, std::nullopt});
}

void scanPlugin(const std::string& sectionName, const std::string& plugin, Findings& findings) {
    // Removing in any case can leave a new ".DLL" behind, which goes too.
    const auto name = replacingOccurrences(replacingOccurrencesIgnoringCase(plugin, ".dll", ""), ".DLL", "");
    if (KnownTypes::isPluginSupported(name))
        return;
    if (lowerCased(plugin).ends_with(".dll")) {
        add(findings, Severity::incompatible, "DLL Plugin",
            "DLL plugin '" + plugin + "' is a Windows native plugin and cannot run on macOS", sectionName);
    } else if (KnownTypes::contains(KnownTypes::incompatiblePlugins(), name)) {
        add(findings, Severity::warning, "Plugin", "Plugin '" + plugin + "' may require a macOS-native replacement",
            sectionName);
    }
}

void scanMeasureType(const std::string& sectionName, const std::string& type, Findings& findings) {
    if (KnownTypes::contains(KnownTypes::incompatibleMeasures(), type)) {
        add(findings, Severity::incompatible, "Windows-only Measure", "Measure type '" + type + "' is Windows-only",
            sectionName);
    } else if (KnownTypes::contains(KnownTypes::partialMeasures(), type)) {
        add(findings, Severity::warning, "Partial Support", "Measure type '" + type + "' has limited macOS support",
            sectionName);
    } else if (!KnownTypes::isMeasureKnown(type)) {
        add(findings, Severity::warning, "Unknown Measure", "Unknown measure type '" + type + "'", sectionName);
    }
}

void scanMeasures(const SkinConfig& config, Findings& findings) {
    for (const auto& measure : config.measures) {
        if (!equalsIgnoringCase(measure.measureType, "PLUGIN"))
            scanMeasureType(measure.sectionName, measure.measureType, findings);
        else if (measure.pluginName)
            scanPlugin(measure.sectionName, *measure.pluginName, findings);
    }
}

void scanMeters(const SkinConfig& config, Findings& findings) {
    for (const auto& meter : config.meters) {
        const auto& type = meter.meterType;
        if (KnownTypes::contains(KnownTypes::incompatibleMeters(), type)) {
            add(findings, Severity::incompatible, "Windows-only Meter", "Meter type '" + type + "' is Windows-only",
                meter.sectionName);
        } else if (!KnownTypes::isMeterKnown(type)) {
            add(findings, Severity::warning, "Unknown Meter", "Unknown meter type '" + type + "'", meter.sectionName);
        }
    }
}

/// Calls `visit` with each section and its effective key lines, in order.
template <typename Visit> void forEachKeyValue(const INIDocument& document, Visit visit) {
    for (const auto& section : document.sections)
        section.forEachLine([&](const INIKeyValue& line) { visit(section, line); });
}

void scanActions(const SkinConfig& config, Findings& findings) {
    forEachKeyValue(config.rawDocument, [&](const INISection& section, const INIKeyValue& line) {
        if (!hasSuffixIgnoringCase(line.key, "ACTION") && !containsIgnoringCase(line.key, "COMMAND"))
            return;
        if (CompatPatterns::containsExecutable(line.value)) {
            add(findings, Severity::warning, "Windows Executable", "Action references a Windows .exe: " + line.value,
                section.name);
        }
    });
}

void scanPaths(const SkinConfig& config, Findings& findings) {
    forEachKeyValue(config.rawDocument, [&](const INISection& section, const INIKeyValue& line) {
        if (CompatPatterns::containsDrivePath(line.value) || CompatPatterns::containsEnvironmentVariable(line.value)) {
            add(findings, Severity::warning, "Windows Path", "Value contains Windows-specific path: " + line.value,
                section.name);
        }
    });
}

CompatVerdict determineVerdict(const CompatReport& report) {
    if (report.incompatibleCount() > 0)
        return CompatVerdict::incompatible;
    return report.warningCount() > 0 ? CompatVerdict::partiallyCompatible : CompatVerdict::compatible;
}

} // namespace

CompatReport scan(const SkinConfig& config) {
    CompatReport report{config.filePath, config.metadata.name, CompatVerdict::compatible, {}};
    scanMeasures(config, report.findings);
    scanMeters(config, report.findings);
    scanActions(config, report.findings);
    scanPaths(config, report.findings);
    report.verdict = determineVerdict(report);
    return report;
}

} // namespace Ostrel::CompatScanner
