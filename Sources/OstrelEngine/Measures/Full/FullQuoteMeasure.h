#pragma once

#include "OstrelEngine/Measures/Full/BackgroundTask.h"
#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/RandomNumbers.h"

#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// A random piece of a text file, or the path of a random file of a folder; another one at each update.
class FullQuoteMeasure final : public FullMeasure {
public:
    FullQuoteMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

    void update() override;

private:
    /// Another piece than the one that is shown; empty while there is none.
    void pick();
    void readPieces();

    RandomNumbers random_;
    std::vector<std::string> pieces_;
    std::optional<std::size_t> shown_;
    std::optional<double> readAt_;
    std::string path_;
    BackgroundTask<std::vector<std::string>> task_;
};

} // namespace Ostrel
