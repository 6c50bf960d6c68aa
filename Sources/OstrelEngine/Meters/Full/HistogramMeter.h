#pragma once

#include "OstrelEngine/Meters/Full/GraphMeter.h"

#include <memory>

namespace Ostrel {

/// The history of one or two measures as columns: one color up to the smaller of the two, then that of the larger.
class HistogramMeter final : public GraphMeter {
public:
    HistogramMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);
    ~HistogramMeter() override;

protected:
    void readOptions() override;
    void prepareColumns(MeasureValues values) override;
    void drawColumns(QPainter& painter, Index first, Index end) const override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Ostrel
