#pragma once

#include "OstrelCore/Documents/Diagnostic.h"
#include "OstrelCore/Documents/SkinModel.h"

#include <optional>
#include <string>
#include <string_view>

// How our programs read skins that the user named, and say on standard error what went wrong.
namespace Ostrel {

/// "ostrel: <message>" on standard error.
void printMessage(std::string_view message);

/// Loads a skin from disk. Absent when that fails, which has then been told on standard error.
std::optional<SkinConfig> loadSkin(const std::string& path, DiagnosticCollector& diagnostics);
/// The same under its absolute path, so that a running skin finds the files beside it wherever it was started from.
std::optional<SkinConfig> loadSkinToRun(const std::string& path, DiagnosticCollector& diagnostics);

} // namespace Ostrel
