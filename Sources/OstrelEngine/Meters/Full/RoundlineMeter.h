#pragma once

#include "OstrelEngine/Meters/Full/FullMeter.h"
#include "OstrelEngine/Meters/Full/ValueShare.h"

#include <memory>

namespace Ostrel {

/// A hand or a sector about the middle of its box, turned and lengthened by the first bound measure; without a measure
/// as if that were at its end. It is not cut to its box.
class RoundlineMeter final : public FullMeter {
public:
    RoundlineMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);
    ~RoundlineMeter() override;

protected:
    void readOptions() override;
    void takeValues(MeasureValues values) override;
    Size contentSize(std::optional<double> width, std::optional<double> height) const override;
    void drawContent(QPainter& painter) override;
    Rect contentPaintRect() const override;
    bool drawsUnderAnyTransform() const override { return true; }

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Ostrel
