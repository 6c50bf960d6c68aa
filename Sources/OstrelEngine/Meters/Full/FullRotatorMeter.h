#pragma once

#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Full/FullMeter.h"
#include "OstrelEngine/Meters/Full/PictureSource.h"

#include <string>

namespace Ostrel {

/// A picture in its own size that turns about a pivot as a measure's value moves through its range.
class FullRotatorMeter final : public FullMeter {
public:
    FullRotatorMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);

protected:
    void readOptions() override;
    void takeValues(MeasureValues values) override;
    Size contentSize(std::optional<double>, std::optional<double>) const override { return {}; }
    void drawContent(QPainter& painter) override;
    Rect contentPaintRect() const override;

private:
    struct Look {
        std::string name;
        /// In the picture.
        Point pivot;
        /// Radians, clockwise.
        double startAngle = 0;
        double rotationAngle = 0;
        /// Whole, 0 for none.
        double remainder = 0;

        friend bool operator==(const Look&, const Look&) = default;
    };
    /// Where the pivot is on the widget.
    Point center() const;

    Look look_;
    PictureSource picture_;
    double angle_ = 0;
    DevicePicture turned_;
    std::uint64_t revision_ = 0;
};

} // namespace Ostrel
