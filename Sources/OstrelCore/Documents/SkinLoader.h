#pragma once

#include "OstrelCore/Documents/Diagnostic.h"
#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinModel.h"

#include <optional>
#include <string>

namespace Ostrel {

class VariableExpander;
class VariableStore;

/// Turns a skin's file into the plain data that everything else works on:
///
///     DiskFileProvider files;
///     DiagnosticCollector diagnostics;
///     const auto config = SkinLoader(files, diagnostics).load(path);
class SkinLoader {
public:
    /// Both outlive the loader.
    SkinLoader(FileProvider& files, DiagnosticCollector& diagnostics)
        : files_(files)
        , diagnostics_(diagnostics) { }

    /// Includes followed, variables known at load time expanded, sections classified. Absent when the file cannot be
    /// read; the collector tells why, and what else was amiss.
    std::optional<SkinConfig> load(const std::string& path) const;

private:
    /// The merged document, still unexpanded. Fills the store on the way.
    std::optional<INIDocument> read(const std::string& path, VariableStore& store, VariableExpander& expander) const;

    FileProvider& files_;
    DiagnosticCollector& diagnostics_;
};

} // namespace Ostrel
