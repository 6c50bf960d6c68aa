#pragma once

#include "OstrelCore/Documents/Diagnostic.h"
#include "OstrelCore/Documents/INIDocument.h"
#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelDialect/PackFolders.h"

#include <string>
#include <vector>

namespace Ostrel {

/// A section of a skin as its files have it: every option's raw text, nothing expanded.
struct PackSection {
    enum class Kind { Rainmeter, Variables, Metadata, Measure, Meter, Other };

    /// Trimmed.
    std::string name;
    Kind kind = Kind::Other;
    Options options;
};

/// A skin read by the full dialect's rules: files merged, raw text kept. Variables are as they stand after the load: a
/// reference to another variable in them is resolved where that was possible.
struct PackSkin {
    PackFolders folders;
    /// In the order that decides updates and drawing.
    std::vector<PackSection> sections;
    /// Of [Variables], in the order of first definitions.
    Options variables;
    /// All sections after includes with files and lines, for `inspect`.
    INIDocument document;
    std::vector<Diagnostic> diagnostics;
};

} // namespace Ostrel
