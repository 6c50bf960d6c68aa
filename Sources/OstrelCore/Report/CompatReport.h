#pragma once

#include "OstrelCore/Documents/Diagnostic.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// One thing of a skin that will not work here, or not as its author meant it.
struct CompatFinding {
    enum class Severity { incompatible, warning, info };

    Severity severity = Severity::info;
    /// A short label: "Windows Path".
    std::string category;
    /// One sentence for the user.
    std::string message;
    std::optional<std::string> sectionName;
    std::optional<SourceLocation> location;

    friend bool operator==(const CompatFinding&, const CompatFinding&) = default;
};

enum class CompatVerdict { compatible, partiallyCompatible, incompatible };

/// "incompatible", "warning" or "info".
std::string_view rawText(CompatFinding::Severity severity);
/// "compatible", "partiallyCompatible" or "incompatible".
std::string_view rawText(CompatVerdict verdict);

struct CompatReport {
    std::string skinPath;
    std::optional<std::string> skinName;
    CompatVerdict verdict = CompatVerdict::compatible;
    /// In the order of detection.
    std::vector<CompatFinding> findings;

    std::size_t incompatibleCount() const;
    std::size_t warningCount() const;

    friend bool operator==(const CompatReport&, const CompatReport&) = default;
};

} // namespace Ostrel
