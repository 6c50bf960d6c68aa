#include "OstrelGUI/Window/StatusIcon.h"

#include <memory>

namespace Ostrel {

QString verdictLabel(CompatVerdict verdict) {
    switch (verdict) {
    case CompatVerdict::compatible:
        return QStringLiteral("Compatible");
    case CompatVerdict::partiallyCompatible:
        return QStringLiteral("Partially Compatible");
    case CompatVerdict::incompatible:
        return QStringLiteral("Incompatible");
    }
    return {};
}

StatusIcon StatusIcon::of(CompatVerdict verdict) {
    switch (verdict) {
    case CompatVerdict::compatible:
        return {Symbol::checkmarkCircle, Tone::success, verdictLabel(verdict)};
    case CompatVerdict::partiallyCompatible:
        return {Symbol::exclamationTriangle, Tone::warning, verdictLabel(verdict)};
    case CompatVerdict::incompatible:
        return {Symbol::xmarkOctagon, Tone::error, verdictLabel(verdict)};
    }
    return {};
}

StatusIcon StatusIcon::of(const ScannerViewModel::ScanState& state) {
    if (const auto* success = std::get_if<std::shared_ptr<const ScannerViewModel::ScanSuccess>>(&state))
        return of((*success)->report.verdict);
    if (std::holds_alternative<std::shared_ptr<const ScannerViewModel::ScanFailure>>(state))
        return {Symbol::xmarkCircle, Tone::error, QStringLiteral("Error")};
    return {Symbol::none, Tone::dim, QStringLiteral("Scanning…")};
}

StatusIcon StatusIcon::of(CompatFinding::Severity severity) {
    switch (severity) {
    case CompatFinding::Severity::incompatible:
        return {Symbol::xmarkOctagon, Tone::error, QStringLiteral("incompatible")};
    case CompatFinding::Severity::warning:
        return {Symbol::exclamationTriangle, Tone::warning, QStringLiteral("warning")};
    case CompatFinding::Severity::info:
        return {Symbol::infoCircle, Tone::accent, QStringLiteral("info")};
    }
    return {};
}

StatusIcon StatusIcon::of(DiagnosticSeverity severity) {
    if (severity == DiagnosticSeverity::warning)
        return {Symbol::exclamationTriangle, Tone::warning, QStringLiteral("warning")};
    return {Symbol::exclamationOctagon, Tone::error, QStringLiteral("error")};
}

} // namespace Ostrel
