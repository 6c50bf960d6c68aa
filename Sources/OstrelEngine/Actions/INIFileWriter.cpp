#include "OstrelEngine/Actions/INIFileWriter.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Files/AtomicFile.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelEngine/Actions/INILineEditor.h"

#include <filesystem>

namespace Ostrel::INIFileWriter {

namespace {

/// The file itself, or where it is to be made, in folders that may be spelled in another case than the skin does.
std::string fileToWrite(const std::string& path) {
    const auto directory = deletingLastPathComponent(path);
    if (directory.empty())
        return existingPath(path);
    std::error_code ignored;
    const auto existingDirectory = existingPath(directory);
    std::filesystem::create_directories(existingDirectory, ignored);
    return existingPath(appendingPathComponent(existingDirectory, lastPathComponent(path)));
}

} // namespace

bool writeKeyValue(const std::string& path, std::string_view section, std::string_view key, std::string_view value) {
    if (path.empty() || path.find('\0') != std::string::npos)
        return false;
    const auto file = fileToWrite(path);
    std::error_code ignored;
    const auto content = DiskFileProvider().contentsOfFile(file);
    if (!content && std::filesystem::exists(file, ignored))
        return false;
    return writeFileAtomically(file, INILineEditor::updateINIContent(content.value_or(""), section, key, value));
}

} // namespace Ostrel::INIFileWriter
