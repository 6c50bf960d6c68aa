#include "OstrelEngine/Measures/Full/ScriptFiles.h"

#include "OstrelCore/Files/AtomicFile.h"
#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"

#include <filesystem>
#include <system_error>

namespace Ostrel {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view OutOfBounds = "scripts may not touch this file";

/// Without links and dots; what does not exist yet is kept as it is.
std::string resolvedPath(const std::string& path) {
    std::error_code failed;
    const auto resolved = fs::weakly_canonical(path, failed);
    return failed ? std::string() : resolved.string();
}

std::string resolvedFolder(const std::string& path) {
    auto folder = path.empty() ? std::string() : resolvedPath(path);
    if (!folder.empty() && !folder.ends_with('/'))
        folder += '/';
    return folder;
}

bool isIn(std::string_view path, std::string_view folder) {
    return !folder.empty() && path.starts_with(folder) && path.size() > folder.size();
}

/// A pack that stands alone has no packs beside it: its parent may be anything, the user's home for one.
bool isSkinsFolder(std::string_view folder) {
    return equalsIgnoringCase(lastPathComponent(folder), "Skins");
}

bool isExecutable(const fs::file_status& status) {
    constexpr auto Execute = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    return fs::exists(status) && (status.permissions() & Execute) != fs::perms::none;
}

} // namespace

ScriptFiles::ScriptFiles(const PackFolders& folders)
    : folders_(folders)
    , root_(resolvedFolder(folders.root))
    , settings_(resolvedFolder(folders.settings))
    , skins_(isSkinsFolder(folders.skins) ? resolvedFolder(folders.skins) : std::string()) { }

std::string ScriptFiles::readable(std::string_view path, std::string& error) const {
    // A zero byte would cut the path for the system.
    auto resolved = path.find('\0') == std::string_view::npos ? resolvedPath(folders_.absolutePath(path)) : "";
    if (isIn(resolved, root_) || isIn(resolved, settings_) || isIn(resolved, skins_))
        return resolved;
    error = OutOfBounds;
    return {};
}

std::string ScriptFiles::writable(std::string_view path, std::string& error) const {
    auto resolved = readable(path, error);
    if (resolved.empty())
        return {};
    std::error_code failed;
    const auto status = fs::status(resolved, failed);
    const bool isFile = !fs::exists(status) || fs::is_regular_file(status);
    if ((isIn(resolved, root_) || isIn(resolved, settings_)) && isFile && !isExecutable(status))
        return resolved;
    error = OutOfBounds;
    return {};
}

std::string ScriptFiles::existingWritable(std::string_view path, std::string& error) const {
    auto resolved = writable(path, error);
    std::error_code failed;
    if (resolved.empty() || fs::is_regular_file(resolved, failed))
        return resolved;
    error = "No such file";
    return {};
}

std::optional<std::string> ScriptFiles::read(std::string_view path, std::string& error) const {
    const auto resolved = readable(path, error);
    if (resolved.empty())
        return std::nullopt;
    const auto file = openFile(resolved);
    auto bytes = file ? contentsOf(file, MaxFileSize) : std::nullopt;
    if (!bytes)
        error = file ? "the file cannot be read or is too large" : "No such file or directory";
    return bytes;
}

bool ScriptFiles::write(std::string_view path, std::string_view bytes, std::string& error) const {
    const auto resolved = writable(path, error);
    if (resolved.empty())
        return false;
    std::error_code failed;
    if (isIn(resolved, settings_))
        fs::create_directories(settings_, failed);
    if (bytes.size() <= MaxFileSize && writeFileAtomically(resolved, bytes))
        return true;
    error = "the file cannot be written";
    return false;
}

bool ScriptFiles::remove(std::string_view path, std::string& error) const {
    const auto resolved = existingWritable(path, error);
    std::error_code failed;
    if (resolved.empty())
        return false;
    if (fs::remove(resolved, failed))
        return true;
    error = failed.message();
    return false;
}

bool ScriptFiles::rename(std::string_view from, std::string_view to, std::string& error) const {
    const auto source = existingWritable(from, error);
    const auto target = source.empty() ? std::string() : writable(to, error);
    if (target.empty())
        return false;
    std::error_code failed;
    fs::rename(source, target, failed);
    if (failed)
        error = failed.message();
    return !failed;
}

} // namespace Ostrel
