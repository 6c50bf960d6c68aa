#pragma once

#include "OstrelEngine/Measures/Full/BackgroundTask.h"
#include "OstrelEngine/Measures/Full/FolderScan.h"
#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/ParentMeasures.h"

#include <optional>
#include <string>

namespace Ostrel {

/// How many files or folders lie in a folder, or how many bytes. Looked at again no sooner than after 5 seconds.
class FullFolderInfoMeasure final : public FullMeasure {
public:
    FullFolderInfoMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

    void update() override;

private:
    void readOptions();
    void scan();

    ParentMeasures<FullFolderInfoMeasure> registration_;
    std::string type_;
    std::string folder_;
    FolderRequest request_;
    std::string filter_;
    bool isReadable_ = false;
    FolderContents contents_;
    std::optional<double> scannedAt_;
    BackgroundTask<FolderContents> task_;
};

} // namespace Ostrel
