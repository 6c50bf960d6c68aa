#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

class QImage;

namespace Ostrel {

/// What the general image options ask of a picture. They are applied in the order in which they stand here.
struct PictureOptions {
    /// UseExifOrientation, while the file is read.
    bool isUpright = false;

    struct Crop {
        double x = 0;
        double y = 0;
        double width = 0;
        double height = 0;
        /// 1 top left, 2 top right, 3 bottom right, 4 bottom left, 5 center.
        int origin = 1;

        friend bool operator==(const Crop&, const Crop&) = default;
    };
    std::optional<Crop> crop;
    bool flipsSides = false;
    bool flipsUpsideDown = false;
    /// Degrees, clockwise.
    double rotation = 0;
    bool isGrey = false;
    /// Factors of the channels, the last of the opacity; 255 changes nothing.
    std::array<std::uint8_t, 4> tint = {255, 255, 255, 255};
    /// Rows of red, green, blue, opacity and 1, in place of the tint.
    using Matrix = std::array<std::array<float, 5>, 5>;
    std::optional<Matrix> matrix;

    /// The options with this prefix: "Primary" reads "PrimaryImageTint" and its like.
    static PictureOptions parse(const Options& options, std::string_view prefix = {});

    /// The picture after all of it but the orientation. Null when it would have more pixels than a picture may be
    /// loaded with, or the crop leaves nothing.
    QImage applied(const QImage& picture) const;

    friend bool operator==(const PictureOptions&, const PictureOptions&) = default;
};

} // namespace Ostrel
