#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"

#include <memory>
#include <optional>

namespace Ostrel {

/// Fills its frame in proportion to the first bound measure.
class BarMeter final : public MeterRenderer {
public:
    BarMeter(const MeterDefinition& definition, Options options);
    ~BarMeter() override;

    void draw(QPainter& painter, MeasureValues values) override;
    bool updateAppearance(MeasureValues values) override;
    std::optional<Rect> changedPart() const override;
    Rect paintRect(MeasureValues values) override;
    bool isCheapToDraw() const override { return true; }
    bool joinsBarRow() const override { return true; }

protected:
    void optionsDidChange() override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Ostrel
