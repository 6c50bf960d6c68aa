#include "OstrelEngine/Runtime/InferredSize.h"

#include "OstrelEngine/Meters/ImageMeter.h"
#include "OstrelEngine/Meters/ShapeMeter.h"
#include "OstrelEngine/Meters/StringMeter.h"

namespace Ostrel {

namespace {

bool isComplete(Size size) {
    return size.width > 0 && size.height > 0;
}

/// Each side of `size` that is not above 0 comes from `other`.
Size filled(Size size, Size other) {
    return {size.width > 0 ? size.width : other.width, size.height > 0 ? size.height : other.height};
}

Size shapeSize(const ShapeMeter& meter, Size size) {
    const auto bounds = ShapeMeter::inferredBounds(meter.options());
    return bounds ? filled(size, {bounds->maxX(), bounds->maxY()}) : size;
}

/// One side alone keeps the image's proportions.
Size imageSize(Size size, Size image) {
    if (size.width > 0)
        return {size.width, (size.width / image.width) * image.height};
    if (size.height > 0)
        return {(size.height / image.height) * image.width, size.height};
    return image;
}

Size sizeOfImageMeter(const ImageMeter& meter, Size size) {
    if (const auto image = loadedImageSize(meter))
        size = imageSize(size, *image);
    // A picture that is still to come takes a square.
    const bool isDynamic = option(meter.options(), "DynamicVariables"_key) == "1";
    if (isDynamic && size.width > 0 && !(size.height > 0))
        size.height = size.width;
    return size;
}

} // namespace

Size inferredSize(MeterRenderer& meter, MeasureValues values, Size written) {
    if (isComplete(written))
        return written;
    switch (meter.kind()) {
    case MeterKind::shape:
        return shapeSize(static_cast<const ShapeMeter&>(meter), written);
    case MeterKind::string:
        return filled(written, static_cast<StringMeter&>(meter).estimatedSize(values));
    case MeterKind::image:
        return sizeOfImageMeter(static_cast<const ImageMeter&>(meter), written);
    case MeterKind::bar:
    case MeterKind::stub:
        break;
    }
    return written;
}

std::optional<Size> loadedImageSize(const MeterRenderer& meter) {
    if (meter.kind() != MeterKind::image)
        return std::nullopt;
    const auto size = static_cast<const ImageMeter&>(meter).imageSize();
    return size && isComplete(*size) ? size : std::nullopt;
}

} // namespace Ostrel
