#pragma once

#include "OstrelCore/Report/CompatReport.h"
#include "OstrelGUI/ScannerViewModel.h"
#include "OstrelGUI/Window/SymbolIcons.h"

namespace Ostrel {

/// A picture for a state; while a scan runs it is none, and a progress indicator stands there.
struct StatusIcon {
    Symbol symbol = Symbol::none;
    Tone tone = Tone::dim;
    /// For those who do not see it.
    QString description;

    static StatusIcon of(const ScannerViewModel::ScanState& state);
    static StatusIcon of(CompatVerdict verdict);
    static StatusIcon of(CompatFinding::Severity severity);
    static StatusIcon of(DiagnosticSeverity severity);
};

/// "Compatible", "Partially Compatible" or "Incompatible".
QString verdictLabel(CompatVerdict verdict);

} // namespace Ostrel
