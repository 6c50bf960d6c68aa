#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace Ostrel {

/// Milliseconds that an address takes to answer, asked at every n-th update.
class FullPingMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;

private:
    void ask();
    void takeAnswer(std::optional<double> milliseconds);

    std::int64_t updates_ = 0;
    std::int64_t rate_ = 32;
    double shown_ = 0;
    bool isAsking_ = false;
    /// Answers for a measure that is gone are dropped.
    std::shared_ptr<bool> life_ = std::make_shared<bool>(true);
};

} // namespace Ostrel
