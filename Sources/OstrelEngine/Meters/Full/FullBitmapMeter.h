#pragma once

#include "OstrelEngine/Meters/Full/FullMeter.h"
#include "OstrelEngine/Meters/Full/PictureFrames.h"
#include "OstrelEngine/Meters/Full/PictureSource.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Ostrel {

/// One of a picture's frames for a measure's value, or a frame for each of its digits. Between values the transition
/// frames may play.
class FullBitmapMeter final : public FullMeter {
public:
    FullBitmapMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);

    Point anchorOffset(Size box) const override;
    std::optional<double> secondsUntilNextFrame() const override;
    void advance() override;

protected:
    void readOptions() override;
    void takeValues(MeasureValues values) override;
    Size contentSize(std::optional<double> width, std::optional<double> height) const override;
    bool ignoresWrittenSize() const override { return true; }
    void drawContent(QPainter& painter) override;
    Rect contentPaintRect() const override;

private:
    struct Look {
        std::string name;
        int frames = 1;
        /// Behind each real frame.
        int transitions = 0;
        bool showsDigits = false;
        /// 0 for as many as the number has.
        int digits = 0;
        double separation = 0;
        /// Of the width, to the left of the anchor.
        double anchor = 0;

        friend bool operator==(const Look&, const Look&) = default;
    };
    struct Place {
        /// Of the real frames.
        int index = 0;
        int before = 0;
        FittedImage fitted;
    };

    int realFrames() const;
    std::vector<int> indexes(MeasureValues values) const;
    int shownFrame(const Place& place) const;

    Look look_;
    PictureSource picture_;
    PictureFrames frames_;
    std::vector<Place> places_;
    bool hasShown_ = false;
    /// Counts the transition frames that are past; absent while the meter rests.
    std::optional<int> step_;
};

} // namespace Ostrel
