#pragma once

#include "OstrelEngine/Meters/Full/GraphMeter.h"

#include <memory>

namespace Ostrel {

/// The history of its measures as lines, all in one scale.
class LineMeter final : public GraphMeter {
public:
    LineMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);
    ~LineMeter() override;

protected:
    void readOptions() override;
    void prepareColumns(MeasureValues values) override;
    void drawColumns(QPainter& painter, Index first, Index end) const override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Ostrel
