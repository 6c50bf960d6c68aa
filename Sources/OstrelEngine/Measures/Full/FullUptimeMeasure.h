#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// Seconds since the system started, or those of `SecondsValue`, with the text that `Format` makes of them.
class FullUptimeMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;

private:
    void readFormat();
    std::string shown(std::int64_t seconds) const;

    struct Piece {
        /// 1 seconds, 2 minutes, 3 hours, 4 days, 0 `literal`.
        int unit = 0;
        int width = 0;
        char padding = ' ';
        std::string literal;
    };
    std::vector<Piece> pieces_;
    bool addsDaysToHours_ = true;
    std::optional<double> seconds_;
};

} // namespace Ostrel
