#pragma once

#include "OstrelPlatform/Linux/Files/TrashFolders.h"
#include "OstrelPlatform/RecycleManagerBackend.h"

#include <string>
#include <string_view>

namespace Ostrel {

class Workspace;

/// The trash as folders hold it: the desktop's and the classic ones, together (`TrashFolders`). A file that vanishes
/// while it is counted counts with no bytes. What Finder leaves behind is no trash.
class FileSystemRecycleManagerBackend final : public RecycleManagerBackend {
public:
    static constexpr std::string_view ignoredTopLevelNames[] = {".DS_Store", ".localized"};

    explicit FileSystemRecycleManagerBackend(Workspace& workspace, TrashPlaces places = TrashPlaces::ofUser());

    RecycleBinSnapshot snapshot(const std::string& drives) override;
    std::int64_t itemCount(const std::string& drives) override;
    /// The desktop's view of its trash; the folder itself where that is a classic one.
    void openBin(const std::string& drives) override;
    /// Links are removed, not followed, and nothing is removed beyond the folder. The record of an item of the
    /// desktop's trash goes once the item is gone, so that what could not be removed can still be put back.
    void emptyBin(const std::string& drives) override;

private:
    Workspace& workspace_;
    TrashFolders folders_;
};

} // namespace Ostrel
