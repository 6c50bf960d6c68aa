#pragma once

#include "OstrelEngine/Meters/Full/GraphMeter.h"

#include <memory>

namespace Ostrel {

/// The history of one or two measures as columns: one color up to the smaller of the two, then that of the larger.
/// Pictures in place of the colors give the meter its size and are uncovered by the columns.
class HistogramMeter final : public GraphMeter {
public:
    HistogramMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);
    ~HistogramMeter() override;

protected:
    void readOptions() override;
    void prepareColumns(MeasureValues values) override;
    void takeValues(MeasureValues values) override;
    void drawColumns(QPainter& painter, Index first, Index end) const override;
    Size contentSize(std::optional<double> width, std::optional<double> height) const override;
    bool ignoresWrittenSize() const override;
    /// Pictures stay where they are while the columns that uncover them move.
    bool columnsMoveUnchanged() const override { return !ignoresWrittenSize(); }

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Ostrel
