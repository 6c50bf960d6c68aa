#pragma once

#include "OstrelEngine/Meters/Full/FullMeter.h"

namespace Ostrel {

/// Rectangles, ellipses, lines, arcs, curves, paths and what is combined of them. Its size, where not written, reaches
/// from 0 to the right and bottom end of all that is drawn, strokes included.
class FullShapeMeter final : public FullMeter {
public:
    FullShapeMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);
    ~FullShapeMeter() override;

    MouseArea mouseArea() const override { return MouseArea::OwnPixels; }
    bool isSolidAt(Point point) override;

protected:
    void readOptions() override;
    void takeValues(MeasureValues) override { }
    Size contentSize(std::optional<double> width, std::optional<double> height) const override;
    void drawContent(QPainter& painter) override;
    Rect contentPaintRect() const override;
    bool drawsUnderAnyTransform() const override { return true; }

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Ostrel
