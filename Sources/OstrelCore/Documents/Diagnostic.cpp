#include "OstrelCore/Documents/Diagnostic.h"

#include <array>
#include <charconv>

namespace Ostrel {

const std::string& SourceLocation::filePath() const {
    static const std::string none;
    return file ? *file : none;
}

std::string SourceLocation::description() const {
    std::array<char, 16> digits;
    const auto end = std::to_chars(digits.begin(), digits.end(), line).ptr;
    return filePath() + ":" + std::string(digits.begin(), end);
}

std::string Diagnostic::description() const {
    const std::string text = (severity == DiagnosticSeverity::error ? "error: " : "warning: ") + message;
    return location ? location->description() + ": " + text : text;
}

bool DiagnosticCollector::hasErrors() const {
    return !errors().empty();
}

std::vector<Diagnostic> DiagnosticCollector::errors() const {
    return ofSeverity(DiagnosticSeverity::error);
}

std::vector<Diagnostic> DiagnosticCollector::warnings() const {
    return ofSeverity(DiagnosticSeverity::warning);
}

void DiagnosticCollector::warning(std::string_view message, std::optional<SourceLocation> at) {
    diagnostics_.push_back({DiagnosticSeverity::warning, std::string(message), std::move(at)});
}

void DiagnosticCollector::error(std::string_view message, std::optional<SourceLocation> at) {
    diagnostics_.push_back({DiagnosticSeverity::error, std::string(message), std::move(at)});
}

std::vector<Diagnostic> DiagnosticCollector::ofSeverity(DiagnosticSeverity severity) const {
    std::vector<Diagnostic> result;
    for (const auto& diagnostic : diagnostics_) {
        if (diagnostic.severity == severity)
            result.push_back(diagnostic);
    }
    return result;
}

} // namespace Ostrel
