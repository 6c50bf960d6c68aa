#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// One bitmap, of a file or URL.
class ImageMeter final : public MeterRenderer {
public:
    ImageMeter(
        const MeterDefinition& definition, Options options, const std::string& skinPath, const Platform& platform);
    ~ImageMeter() override;

    /// The path or URL that a skin means by an image name: "#@#" and "#CURRENTPATH#" replaced, relative names joined
    /// with the skin's folder. The disk is asked for nothing but the nearest "@Resources".
    static std::string resolveImagePath(std::string_view imageName, std::string_view skinPath);

    void draw(QPainter& painter, MeasureValues values) override;
    bool updateAppearance(MeasureValues values) override;
    Rect paintRect(MeasureValues values) override;
    /// Of the loaded image; one written side alone keeps its proportions.
    Size naturalSize(MeasureValues values, Size written) override;
    bool isWaitingForLayout() const override;

    /// Pixels of the image that is loaded; absent without one.
    std::optional<Size> imageSize() const;

protected:
    void optionsDidChange() override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Ostrel
