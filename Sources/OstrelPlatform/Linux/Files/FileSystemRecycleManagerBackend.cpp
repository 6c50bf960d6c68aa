#include "OstrelPlatform/Linux/Files/FileSystemRecycleManagerBackend.h"

#include "OstrelCore/Files/FolderWalk.h"
#include "OstrelPlatform/Workspace.h"

#include <algorithm>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {

namespace {

constexpr const char* DesktopTrashView = "trash:///";

class SizeSum final : public FolderVisitor {
public:
    void visitFile(int parent, const char* name) override {
        struct stat status = {};
        if (fstatat(parent, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && !S_ISDIR(status.st_mode))
            bytes += status.st_size;
    }
    void leaveFolder(int, const char*) override { }

    std::int64_t bytes = 0;
};

class Removal final : public FolderVisitor {
public:
    void visitFile(int parent, const char* name) override { unlinkat(parent, name, 0); }
    void leaveFolder(int parent, const char* name) override { unlinkat(parent, name, AT_REMOVEDIR); }
};

/// The items of one trash folder.
class TrashItems {
public:
    explicit TrashItems(const TrashFolder& trash)
        : folder_(openFolder(trash.folder.get(), ".")) {
        if (folder_)
            listing_.read(folder_.get());
    }

    int folder() const { return folder_.get(); }
    template <typename Visit> void forEach(Visit visit) const {
        listing_.forEach([&](const FolderEntry& entry) {
            const auto& ignored = FileSystemRecycleManagerBackend::ignoredTopLevelNames;
            if (std::ranges::find(ignored, std::string_view(entry.name)) == std::end(ignored))
                visit(entry);
        });
    }
    std::int64_t count() const {
        std::int64_t count = 0;
        forEach([&](const FolderEntry&) { ++count; });
        return count;
    }

private:
    FileDescriptor folder_;
    FolderListing listing_;
};

bool isGone(int folder, const char* name) {
    struct stat status = {};
    return fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0 && errno == ENOENT;
}

void empty(const TrashFolder& trash) {
    const TrashItems items(trash);
    const auto records = trash.desktopTrash ? openFolder(trash.desktopTrash.get(), "info") : FileDescriptor();
    Removal removal;
    FolderWalk walk(items.folder(), removal);
    items.forEach([&](const FolderEntry& item) {
        walk.visit(item);
        if (records && isGone(items.folder(), item.name))
            unlinkat(records.get(), (std::string(item.name) + ".trashinfo").c_str(), 0);
    });
    // The desktop's memory of how large its folders are; it makes a new one.
    if (trash.desktopTrash)
        unlinkat(trash.desktopTrash.get(), "directorysizes", 0);
}

} // namespace

FileSystemRecycleManagerBackend::FileSystemRecycleManagerBackend(Workspace& workspace, TrashPlaces places)
    : workspace_(workspace)
    , folders_(std::move(places)) { }

RecycleBinSnapshot FileSystemRecycleManagerBackend::snapshot(const std::string& drives) {
    RecycleBinSnapshot snapshot;
    SizeSum sizes;
    for (const auto& trash : folders_.resolve(drives)) {
        const TrashItems items(trash);
        FolderWalk walk(items.folder(), sizes);
        items.forEach([&](const FolderEntry& item) { walk.visit(item); });
        snapshot.itemCount += items.count();
    }
    snapshot.totalSize = std::max<std::int64_t>(0, sizes.bytes);
    return snapshot;
}

std::int64_t FileSystemRecycleManagerBackend::itemCount(const std::string& drives) {
    std::int64_t count = 0;
    for (const auto& trash : folders_.resolve(drives))
        count += TrashItems(trash).count();
    return count;
}

void FileSystemRecycleManagerBackend::openBin(const std::string& drives) {
    const auto folders = folders_.resolve(drives);
    const bool isClassic = !folders.empty() && !folders.front().desktopTrash;
    if (isClassic)
        workspace_.openFile(folders.front().path);
    else if (!workspace_.openURL(DesktopTrashView) && !folders.empty())
        workspace_.openFile(folders.front().path);
}

void FileSystemRecycleManagerBackend::emptyBin(const std::string& drives) {
    for (const auto& trash : folders_.resolve(drives))
        empty(trash);
}

} // namespace Ostrel
