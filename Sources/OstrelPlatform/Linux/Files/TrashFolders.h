#pragma once

#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelPlatform/Linux/Files/MountTable.h"

#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace Ostrel {

/// Where trash is looked for.
struct TrashPlaces {
    std::string home;
    /// The home trash is the folder "Trash" in it.
    std::string dataHome;
    uid_t user = 0;
    std::string mountInfoFile = "/proc/self/mountinfo";
    /// A folder of volumes, each with a classic trash.
    std::string classicVolumes = "/Volumes";

    /// The user's of this process.
    static TrashPlaces ofUser();
};

/// A folder whose entries are what was thrown away. It is held open, though not for reading, so that what was looked at
/// is what is emptied, whatever takes its name meanwhile.
struct TrashFolder {
    std::string path;
    FileDescriptor folder;
    /// The folder around a desktop trash's "files", with "info" beside it; false for a classic trash, which keeps no
    /// records.
    FileDescriptor desktopTrash;
};

/// Finds the trash folders that a list of drives stands for.
///
/// "ALL", an empty list, and a list of nothing that is there mean, in this order:
/// 1. the home trash, $XDG_DATA_HOME/Trash/files;
/// 2. of each mounted volume the desktop's trash of this user: .Trash/UID/files, if .Trash is a real folder with its
///    sticky bit set, and .Trash-UID/files, if that is a real folder of the user's;
/// 3. the classic folders: ~/.Trash, /.Trashes/UID, and .Trashes/UID of each entry of /Volumes.
///
/// A path in the list, such as /media/disk, means .Trashes/UID and .Trash in it, then the desktop's trash of a volume
/// mounted there, and for the home folder the home trash before all. A path that ends in ".Trash" in any case is that
/// folder. Windows drives and relative paths mean nothing.
///
/// Each folder is there once, however many names it has. A classic .Trash with the sticky bit set is the shared trash
/// of all users and never taken as a whole. A volume may come from a stranger, so none of the folders named here may be
/// a link.
class TrashFolders {
public:
    explicit TrashFolders(TrashPlaces places);

    std::vector<TrashFolder> resolve(std::string_view drives);

private:
    class Found;

    void addDefaults(Found& found);
    void addPart(Found& found, std::string_view part);
    void addHomeTrash(Found& found) const;
    void addVolumeTrash(Found& found, const std::string& volume) const;
    void addClassicVolume(Found& found, const std::string& volume) const;
    void addClassicTrash(Found& found, const std::string& parent, const std::string& name) const;

    TrashPlaces places_;
    std::string user_;
    MountTable mounts_;
};

} // namespace Ostrel
