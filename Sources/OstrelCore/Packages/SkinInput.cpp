#include "OstrelCore/Packages/SkinInput.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Files/Paths.h"

#include <cstdio>

namespace Ostrel {

void printMessage(std::string_view message) {
    // One write for a line, and no iostream in programs that print nothing else.
    const std::string line = "ostrel: " + std::string(message) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

namespace {

std::optional<SkinConfig> load(
    const std::string& path, const std::string& shownPath, DiagnosticCollector& diagnostics) {
    DiskFileProvider files;
    auto config = SkinLoader(files, diagnostics).load(path);
    if (!config) {
        printMessage("cannot load " + shownPath);
        for (const auto& diagnostic : diagnostics.diagnostics())
            printMessage(diagnostic.description());
    }
    return config;
}

} // namespace

std::optional<SkinConfig> loadSkin(const std::string& path, DiagnosticCollector& diagnostics) {
    return load(path, path, diagnostics);
}

std::optional<SkinConfig> loadSkinToRun(const std::string& path, DiagnosticCollector& diagnostics) {
    return load(standardizedPath(path), path, diagnostics);
}

} // namespace Ostrel
