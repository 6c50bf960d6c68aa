#include "OstrelCore/Report/CompatReport.h"

#include <algorithm>

namespace Ostrel {

namespace {

std::size_t count(const std::vector<CompatFinding>& findings, CompatFinding::Severity severity) {
    return static_cast<std::size_t>(std::ranges::count(findings, severity, &CompatFinding::severity));
}

} // namespace

std::string_view rawText(CompatFinding::Severity severity) {
    switch (severity) {
    case CompatFinding::Severity::incompatible:
        return "incompatible";
    case CompatFinding::Severity::warning:
        return "warning";
    case CompatFinding::Severity::info:
        return "info";
    }
    return "";
}

std::string_view rawText(CompatVerdict verdict) {
    switch (verdict) {
    case CompatVerdict::compatible:
        return "compatible";
    case CompatVerdict::partiallyCompatible:
        return "partiallyCompatible";
    case CompatVerdict::incompatible:
        return "incompatible";
    }
    return "";
}

std::size_t CompatReport::incompatibleCount() const {
    return count(findings, CompatFinding::Severity::incompatible);
}

std::size_t CompatReport::warningCount() const {
    return count(findings, CompatFinding::Severity::warning);
}

} // namespace Ostrel
