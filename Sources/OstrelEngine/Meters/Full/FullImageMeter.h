#pragma once

#include "OstrelEngine/Meters/FittedImage.h"
#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Full/FullMeter.h"
#include "OstrelEngine/Meters/Full/PictureDrawing.h"
#include "OstrelEngine/Meters/Full/PictureSource.h"

#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// A picture of the full dialect, in its own size or stretched, fitted, tiled, in nine pieces or behind a mask. Which
/// one is named by the options or by measures. Without a readable picture only the background shows.
class FullImageMeter final : public FullMeter {
public:
    FullImageMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);

protected:
    void readOptions() override;
    void takeValues(MeasureValues values) override;
    Size contentSize(std::optional<double> width, std::optional<double> height) const override;
    void drawContent(QPainter& painter) override;
    std::size_t toolTipPlaces() const override { return std::numeric_limits<std::size_t>::max(); }

private:
    enum class Kind { Fitted, Tiled, InPieces, Masked };
    struct Look {
        std::string name;
        Kind kind = Kind::Fitted;
        PictureFit fit = PictureFit::Stretch;
        PictureMargins margins;

        friend bool operator==(const Look&, const Look&) = default;
    };

    Look look_;
    /// The name that these values gave.
    std::string name_;
    std::vector<MeasureValue> values_;
    bool isNamed_ = false;
    PictureSource picture_;
    PictureSource mask_;
    FittedImage fitted_;
    /// Of the other kinds.
    DevicePicture composed_;
    std::uint64_t composition_ = 0;
};

} // namespace Ostrel
