#pragma once

#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Full/FullMeter.h"
#include "OstrelEngine/Meters/Full/PictureDrawing.h"
#include "OstrelEngine/Meters/Full/PictureSource.h"

#include <memory>
#include <string>

namespace Ostrel {

/// What lies behind all meters of a skin, from the options of its skin section: drawn as the first of them, in a frame
/// as large as the window. Its `boxSize`, after an update without values, is what the window is at least.
class FullBackground final : public FullMeter {
public:
    /// From the options of the skin section, their references resolved.
    static std::shared_ptr<FullBackground> create(const Options& skinSection, const FullMeterContext& context);
    FullBackground(const MeterDefinition& definition, Options options, const FullMeterContext& context);

protected:
    void readOptions() override;
    void takeValues(MeasureValues values) override;
    Size contentSize(std::optional<double> width, std::optional<double> height) const override;
    void drawContent(QPainter& painter) override;

private:
    enum class Mode { Picture, None, Color, Stretched, Tiled };

    Mode mode_ = Mode::None;
    std::string name_;
    PictureMargins margins_;
    PictureSource picture_;
    DevicePicture drawn_;
    std::uint64_t revision_ = 0;
};

} // namespace Ostrel
