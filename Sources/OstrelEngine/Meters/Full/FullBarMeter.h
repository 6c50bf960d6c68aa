#pragma once

#include "OstrelEngine/Meters/Full/FullMeter.h"

namespace Ostrel {

/// Fills its box in proportion to the first bound measure, upright unless told otherwise. Without a measure it is the
/// background alone.
class FullBarMeter final : public FullMeter {
public:
    using FullMeter::FullMeter;

    bool isCheapToDraw() const override { return true; }

protected:
    void readOptions() override;
    void takeValues(MeasureValues values) override;
    Size contentSize(std::optional<double> width, std::optional<double> height) const override;
    void drawContent(QPainter& painter) override;
    bool drawsUnderAnyTransform() const override { return true; }

private:
    /// What lies between two lengths of the bar, counted from the content's top left.
    Rect part(double from, double to) const;

    ColorBytes color_{};
    bool isVertical_ = true;
    bool isFlipped_ = false;
    Size size_;
    /// In whole points.
    double length_ = 0;
};

} // namespace Ostrel
