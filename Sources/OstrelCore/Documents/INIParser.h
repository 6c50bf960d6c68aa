#pragma once

#include "OstrelCore/Documents/Diagnostic.h"
#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/INIDocument.h"
#include "OstrelCore/Documents/INILines.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Ostrel {

class VariableExpander;
class VariableStore;

/// Reads the skin dialect of INI: the first definition of a key wins, a repeated head continues its section, only a
/// semicolon at the start of a line begins a comment, and a line that makes no sense is passed over without a word.
class INIParser {
public:
    /// Files may include files down to this depth; a file that includes itself is read this often.
    static constexpr int MaxIncludeDepth = 100;
    /// Includes followed in one call, and lines and bytes of the files read by then; beyond any of these no further
    /// include is followed.
    static constexpr int MaxIncludes = 10000;
    static constexpr std::size_t MaxLines = 1000000;
    static constexpr std::size_t MaxBytes = 64U << 20;

    /// Both outlive the parser.
    INIParser(FileProvider& files, DiagnosticCollector& diagnostics)
        : files_(files)
        , diagnostics_(diagnostics) { }

    /// No includes: their keys are ordinary ones.
    INIDocument parse(std::string_view content, std::string_view filePath = "<string>") const;
    /// The same for a file; absent, with an error recorded, when it cannot be read.
    std::optional<INIDocument> parseFile(const std::string& path) const;
    /// Follows keys that begin with "@Include", read in place: what stands before one wins over the included file.
    /// With a store, their values are expanded and the variables met are added to it. Absent, with an error recorded,
    /// when this file cannot be read; an included one that cannot be read is only recorded.
    std::optional<INIDocument> parseWithIncludes(const std::string& path, VariableStore* store = nullptr) const;
    /// The same for a main file that has been read already, with an expander of that store, whose bounds then hold for
    /// the includes and for all that is expanded later; never fails.
    INIDocument parseWithIncludes(std::span<const INILine> lines, const std::string& path, VariableStore& store,
        VariableExpander& expander) const;

    /// The section of that name alone, as `parse` would give it, from the lines of a whole file.
    static std::optional<INISection> parseSection(
        std::span<const INILine> lines, std::string_view filePath, std::string_view name);
    /// The file's text; absent, with an error recorded, when it cannot be read.
    std::optional<std::string> readFile(const std::string& path) const;

private:
    FileProvider& files_;
    DiagnosticCollector& diagnostics_;
};

} // namespace Ostrel
