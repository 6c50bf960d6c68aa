#pragma once

#include <QString>

#include <string>
#include <vector>

namespace Ostrel {

struct LibraryGroup;

/// The wish to remove a pack from disk, before it is confirmed.
struct DeletePackageRequest {
    std::string packageName;
    /// Each once.
    std::vector<std::string> rootPaths;
    std::size_t itemCount = 0;

    static DeletePackageRequest make(const LibraryGroup& group);
};

/// What the user is asked; the request is null when what was to be deleted is gone.
QString deleteConfirmationText(const DeletePackageRequest* request);

} // namespace Ostrel
