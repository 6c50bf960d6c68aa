#pragma once

#include "OstrelEngine/Meters/FittedImage.h"
#include "OstrelEngine/Meters/Full/FullMeter.h"
#include "OstrelEngine/Meters/Full/PictureSource.h"

namespace Ostrel {

/// Fills its box in proportion to the first bound measure, upright unless told otherwise: with a color, or with a
/// picture that gives the meter its size. Without a measure it is the background alone.
class FullBarMeter final : public FullMeter {
public:
    FullBarMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);

    bool isCheapToDraw() const override { return true; }

protected:
    void readOptions() override;
    void takeValues(MeasureValues values) override;
    Size contentSize(std::optional<double> width, std::optional<double> height) const override;
    bool ignoresWrittenSize() const override { return hasPicture(); }
    void drawContent(QPainter& painter) override;
    bool drawsUnderAnyTransform() const override { return !hasPicture(); }

private:
    struct Look {
        ColorBytes color{};
        bool isVertical = true;
        bool isFlipped = false;
        /// At both ends of a picture, which always show.
        double border = 0;
        std::string pictureName;

        friend bool operator==(const Look&, const Look&) = default;
    };

    bool hasPicture() const { return !look_.pictureName.empty(); }
    /// What lies between two places on the way that the bar grows, counted from the content's top left.
    Rect part(double from, double to) const;

    Look look_;
    PictureSource picture_;
    FittedImage fitted_;
    Size size_;
    /// How far the bar has grown, in whole points.
    double length_ = 0;
};

} // namespace Ostrel
