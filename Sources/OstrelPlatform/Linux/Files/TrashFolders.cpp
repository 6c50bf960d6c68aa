#include "OstrelPlatform/Linux/Files/TrashFolders.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {

namespace {

struct stat statusOf(const FileDescriptor& folder) {
    struct stat status = {};
    if (fstat(folder.get(), &status) != 0)
        status = {};
    return status;
}

/// Also of a folder that may not be read. The way there may lead over links.
FileDescriptor openPlace(const std::string& path) {
    return FileDescriptor(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

FileDescriptor openIn(const FileDescriptor& parent, const std::string& name) {
    return FileDescriptor(openat(parent.get(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool isShared(const FileDescriptor& folder) {
    return statusOf(folder).st_mode & S_ISVTX;
}

/// An absolute path of the environment, or else this one.
std::string environmentPath(const char* name, std::string otherwise) {
    const char* value = std::getenv(name);
    return value && *value == '/' ? value : std::move(otherwise);
}

bool isWindowsDrive(std::string_view part) {
    return part.find(':') != std::string_view::npos && characterPrefix(part, 4) == characterPrefix(part, 3);
}

} // namespace

TrashPlaces TrashPlaces::ofUser() {
    TrashPlaces places;
    places.home = environmentPath("HOME", "/");
    places.dataHome = environmentPath("XDG_DATA_HOME", appendingPathComponent(places.home, ".local/share"));
    places.user = getuid();
    return places;
}

/// The folders so far.
class TrashFolders::Found {
public:
    void add(std::string path, FileDescriptor folder, FileDescriptor desktopTrash) {
        const auto status = statusOf(folder);
        if (folder && identities_.emplace(status.st_dev, status.st_ino).second)
            folders_.push_back({std::move(path), std::move(folder), std::move(desktopTrash)});
    }
    void addClassic(std::string path, FileDescriptor folder) { add(std::move(path), std::move(folder), {}); }
    void addDesktop(const std::string& path, FileDescriptor trash) {
        if (auto files = trash ? openIn(trash, "files") : FileDescriptor())
            add(path + "/files", std::move(files), std::move(trash));
    }

    bool isEmpty() const { return folders_.empty(); }
    std::vector<TrashFolder> take() { return std::move(folders_); }

private:
    std::vector<TrashFolder> folders_;
    std::set<std::pair<dev_t, ino_t>> identities_;
};

TrashFolders::TrashFolders(TrashPlaces places)
    : places_(std::move(places))
    , user_(formatInteger(places_.user))
    , mounts_(places_.mountInfoFile) { }

std::vector<TrashFolder> TrashFolders::resolve(std::string_view drives) {
    Found found;
    std::string list(trimmed(drives));
    std::ranges::replace_if(
        list, [](char c) { return c == '|' || c == ';'; }, ',');
    for (const auto part : splitDroppingEmpty(list, ','))
        addPart(found, trimmed(part));
    if (found.isEmpty())
        addDefaults(found);
    return found.take();
}

void TrashFolders::addPart(Found& found, std::string_view part) {
    if (equalsIgnoringCase(part, "ALL"))
        return addDefaults(found);
    if (isWindowsDrive(part))
        return;
    const auto expanded = expandingTilde(normalizeSeparators(part), places_.home);
    if (!expanded.starts_with('/'))
        return;
    const auto path = standardizedPath(expanded);
    const auto name = lastPathComponent(path);
    if (equalsIgnoringCase(name, ".Trash"))
        return addClassicTrash(found, deletingLastPathComponent(path), name);
    if (path == standardizedPath(places_.home))
        addHomeTrash(found);
    addClassicVolume(found, path);
    addClassicTrash(found, path, ".Trash");
    addVolumeTrash(found, path);
}

void TrashFolders::addDefaults(Found& found) {
    addHomeTrash(found);
    for (const auto& volume : mounts_.volumes())
        addVolumeTrash(found, volume);
    addClassicTrash(found, places_.home, ".Trash");
    addClassicVolume(found, "/");
    std::error_code failed;
    for (const auto& volume : std::filesystem::directory_iterator(places_.classicVolumes, failed))
        addClassicVolume(found, volume.path().string());
}

void TrashFolders::addHomeTrash(Found& found) const {
    const auto path = appendingPathComponent(places_.dataHome, "Trash");
    found.addDesktop(path, openPlace(path));
}

void TrashFolders::addVolumeTrash(Found& found, const std::string& volume) const {
    const auto top = openPlace(volume);
    if (!top)
        return;
    if (const auto shared = openIn(top, ".Trash"); shared && isShared(shared))
        found.addDesktop(appendingPathComponent(volume, ".Trash/" + user_), openIn(shared, user_));
    const auto name = ".Trash-" + user_;
    if (auto own = openIn(top, name); own && statusOf(own).st_uid == places_.user)
        found.addDesktop(appendingPathComponent(volume, name), std::move(own));
}

void TrashFolders::addClassicVolume(Found& found, const std::string& volume) const {
    const auto top = openPlace(volume);
    const auto shared = top ? openIn(top, ".Trashes") : FileDescriptor();
    if (shared)
        found.addClassic(appendingPathComponent(volume, ".Trashes/" + user_), openIn(shared, user_));
}

void TrashFolders::addClassicTrash(Found& found, const std::string& parent, const std::string& name) const {
    const auto top = openPlace(parent);
    auto trash = top ? openIn(top, name) : FileDescriptor();
    if (!trash)
        return;
    const auto path = appendingPathComponent(parent, name);
    if (isShared(trash))
        found.addDesktop(appendingPathComponent(path, user_), openIn(trash, user_));
    else
        found.addClassic(path, std::move(trash));
}

} // namespace Ostrel
