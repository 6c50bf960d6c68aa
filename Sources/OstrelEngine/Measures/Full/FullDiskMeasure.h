#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

#include <string>

namespace Ostrel {

/// Bytes that are free on a drive, or all; or what kind of drive it is. A drive that is missing has 0 of 0, and so has
/// a removable one unless it is asked for.
class FullDiskMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;

private:
    std::string drive_;
    bool showsTotal_ = false;
    bool showsLabel_ = false;
    bool showsType_ = false;
    bool respectsQuota_ = true;
    bool ignoresRemovable_ = true;
};

} // namespace Ostrel
