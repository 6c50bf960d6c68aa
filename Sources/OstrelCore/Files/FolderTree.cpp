#include "OstrelCore/Files/FolderTree.h"

#include "OstrelCore/Files/FileDescriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <vector>

namespace Ostrel {

namespace {

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

Directory openDirectory(int parent, const char* path, int linkFlag) {
    const int descriptor = openat(parent, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC | linkFlag);
    if (descriptor < 0)
        return nullptr;
    DIR* const directory = fdopendir(descriptor);
    if (!directory)
        close(descriptor);
    return Directory(directory);
}

bool isFolder(DIR* directory, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    struct stat status = {};
    return fstatat(dirfd(directory), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

bool forEachEntryBelow(
    const std::string& directory, const std::function<void(std::string_view)>& visit, const std::stop_token& stop) {
    const Directory root = openDirectory(AT_FDCWD, directory.c_str(), 0);
    if (!root)
        return false;
    // One folder is open beside the root at any time: a tree of any depth costs neither stack nor descriptors.
    std::vector<std::string> pending;
    std::string path;
    const auto readFolder = [&](DIR* folder, const std::string& prefix) {
        while (const dirent* entry = stop.stop_requested() ? nullptr : readdir(folder)) {
            const std::string_view name = entry->d_name;
            if (name == "." || name == "..")
                continue;
            path.assign(prefix).append(name);
            visit(path);
            if (isFolder(folder, *entry))
                pending.push_back(path);
        }
    };
    readFolder(root.get(), {});
    while (!pending.empty() && !stop.stop_requested()) {
        const std::string prefix = std::move(pending.back());
        pending.pop_back();
        if (const auto folder = openDirectory(dirfd(root.get()), prefix.c_str(), O_NOFOLLOW))
            readFolder(folder.get(), prefix + "/");
    }
    return true;
}

} // namespace Ostrel
