#pragma once

#include "OstrelEngine/Measures/Full/BackgroundTask.h"
#include "OstrelEngine/Measures/Full/FolderScan.h"
#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/ParentMeasures.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// A folder as a list with pages. A parent lists it when it is loaded and on command; children show one entry each, or
/// what the folder holds.
class FullFileViewMeasure final : public FullMeasure {
public:
    FullFileViewMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

    void update() override;
    bool executeCommand(std::string_view command) override;

private:
    enum class Type {
        FolderPath,
        FolderSize,
        FileCount,
        FolderCount,
        FileName,
        FileType,
        FileSize,
        FileDate,
        FilePath,
        PathToFile,
        Icon,
    };
    struct Listing {
        std::string path;
        std::vector<FolderEntry> entries;
        FolderContents totals;
    };

    void readOptions();
    void list(std::string path);
    void takeListing(Listing listing);
    void turn(std::int64_t entries);
    FullFileViewMeasure& parent();
    /// The entry that this child shows; null for none.
    const FolderEntry* entry();
    void publishEntry(const FolderEntry& shown);
    std::string dateText(std::int64_t second) const;

    ParentMeasures<FullFileViewMeasure> registration_;
    std::string parentName_;
    Type type_ = Type::FolderPath;
    int index_ = 1;
    bool ignoresCount_ = false;

    // Of a parent.
    Listing listing_;
    std::int64_t first_ = 0;
    std::int64_t pageSize_ = 1;
    /// What is to be listed when the running walk has ended.
    std::optional<std::string> next_;
    BackgroundTask<Listing> task_;
};

} // namespace Ostrel
