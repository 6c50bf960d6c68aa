#pragma once

#include "OstrelEngine/Meters/Full/FullMeter.h"
#include "OstrelEngine/Meters/Full/PictureFrames.h"
#include "OstrelEngine/Meters/Full/PictureSource.h"

#include <string>

namespace Ostrel {

/// A picture of three frames: normal, pressed, under the pointer.
class FullButtonMeter final : public FullMeter {
public:
    FullButtonMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);

    bool setPointerState(PointerState state) override;
    /// Whether the shown frame is not transparent there; only such places count for ButtonCommand.
    bool isSolidAt(Point point) override;

protected:
    void readOptions() override;
    void takeValues(MeasureValues values) override;
    Size contentSize(std::optional<double>, std::optional<double>) const override { return frames_.size(); }
    bool ignoresWrittenSize() const override { return true; }
    void drawContent(QPainter& painter) override;
    Rect contentPaintRect() const override;

private:
    const QImage& shownFrame() const;

    std::string name_;
    PictureSource picture_;
    PictureFrames frames_;
    PointerState state_ = PointerState::Outside;
    FittedImage fitted_;
};

} // namespace Ostrel
