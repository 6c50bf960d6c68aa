#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class FullMeasureHost;

/// One file or folder.
struct FolderEntry {
    std::string name;
    std::string path;
    bool isFolder = false;
    /// Bytes; of a folder 0 until it was walked through.
    double size = 0;
    /// Seconds since 1601 of the clock on the wall.
    std::int64_t modified = 0, created = 0, accessed = 0;
};

struct FolderRequest {
    std::string path;
    bool includesHidden = false;
    /// What lies in folders below counts for the totals.
    bool isRecursive = false;
    /// Files of folders below are listed too, folders are not.
    bool listsTree = false;
};

struct FolderContents {
    std::vector<FolderEntry> entries;
    double fileCount = 0;
    double folderCount = 0;
    double size = 0;
};

/// Walks through a folder: at most 20000 entries, 5 seconds and 32 levels, links not followed. What cannot be read is
/// left out. Any thread.
FolderContents scanFolder(const FolderRequest& request);

/// Whether a skin may look at this path: its pack, what lies below the home folder and on media, keys and the kernel's
/// files never, all else when it is allowed.
bool mayRead(FullMeasureHost& host, const std::string& path);

/// Whether a name fits a pattern of "*" and "?", in any case.
bool fitsWildcard(std::string_view name, std::string_view pattern);

} // namespace Ostrel
