#pragma once

#include "OstrelEngine/Meters/Full/FullMeter.h"

#include <limits>
#include <memory>

namespace Ostrel {

/// Text of the full dialect: sizes in points, a box around the lines and nothing more, numbers formatted by the meter,
/// parts that patterns match in styles of their own. Set once for each change.
class FullStringMeter final : public FullMeter {
public:
    FullStringMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);
    ~FullStringMeter() override;

    /// The anchor is where StringAlign says in both directions.
    Point anchorOffset(Size box) const override;
    /// The text as of the last update: formatted, in its case, before it is broken or cut.
    std::optional<std::string> displayedText(MeasureValues values) override;
    bool needsEveryUpdate() const override { return false; }

protected:
    void readOptions() override;
    void takeValues(MeasureValues values) override;
    Size contentSize(std::optional<double> width, std::optional<double> height) const override;
    void drawContent(QPainter& painter) override;
    std::size_t toolTipPlaces() const override { return std::numeric_limits<std::size_t>::max(); }
    NumberFormat toolTipNumbers() const override { return NumberFormat::ofToolTips(); }
    Rect contentPaintRect() const override;

private:
    struct State;
    /// Around the anchor at the box's top, with Angle.
    Point pivot() const;

    std::unique_ptr<State> state_;
};

} // namespace Ostrel
