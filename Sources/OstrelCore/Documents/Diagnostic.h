#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// A line of a file; the first line is 1. The path is as it was given to the parser, shared by all lines of the file.
struct SourceLocation {
    std::shared_ptr<const std::string> file;
    int line = 0;

    const std::string& filePath() const;
    /// "<path>:<line>"
    std::string description() const;
    friend bool operator==(const SourceLocation& a, const SourceLocation& b) {
        return a.line == b.line && (a.file == b.file || a.filePath() == b.filePath());
    }
};

enum class DiagnosticSeverity { warning, error };

struct Diagnostic {
    DiagnosticSeverity severity = DiagnosticSeverity::warning;
    std::string message;
    std::optional<SourceLocation> location;

    /// "<location>: <severity>: <message>", without a location "<severity>: <message>".
    std::string description() const;
    friend bool operator==(const Diagnostic&, const Diagnostic&) = default;
};

/// What went wrong while a skin was read, in order. Shared by the parser, expander and loader of one load; one thread.
class DiagnosticCollector {
public:
    const std::vector<Diagnostic>& diagnostics() const { return diagnostics_; }
    bool hasErrors() const;
    std::vector<Diagnostic> errors() const;
    std::vector<Diagnostic> warnings() const;

    void warning(std::string_view message, std::optional<SourceLocation> at = std::nullopt);
    void error(std::string_view message, std::optional<SourceLocation> at = std::nullopt);

private:
    std::vector<Diagnostic> ofSeverity(DiagnosticSeverity severity) const;

    std::vector<Diagnostic> diagnostics_;
};

} // namespace Ostrel
