#include "OstrelEngine/Meters/ImageAverage.h"

#include <QImage>

#include <algorithm>
#include <cstring>

namespace Ostrel {

namespace {

struct Sums {
    std::uint64_t red = 0;
    std::uint64_t green = 0;
    std::uint64_t blue = 0;
};

// Four pixels at a time, by operations that every processor has for vectors.
using Pixels = std::uint32_t __attribute__((vector_size(16)));
constexpr int PixelsAtOnce = 4;
// So many channels of 255 fit into the 16 bits that red and blue have each.
constexpr int StepsBetweenFlushes = 257;

/// 0xAARRGGBB. Red and blue of a pixel are added in one operation, in the halves of a word.
void addWords(const std::uint32_t* pixels, int count, Sums& sums) {
    const auto addOne = [&sums](std::uint32_t redAndBlue, std::uint32_t green) {
        sums.red += redAndBlue >> 16;
        sums.green += green;
        sums.blue += redAndBlue & 0xFFFF;
    };
    while (count >= PixelsAtOnce) {
        const int steps = std::min(count / PixelsAtOnce, StepsBetweenFlushes);
        Pixels redAndBlue{};
        Pixels green{};
        for (int step = 0; step < steps; ++step) {
            Pixels four;
            std::memcpy(&four, pixels + step * PixelsAtOnce, sizeof four);
            redAndBlue += four & 0xFF00FF;
            green += four >> 8 & 0xFF;
        }
        for (int i = 0; i < PixelsAtOnce; ++i)
            addOne(redAndBlue[i], green[i]);
        pixels += steps * PixelsAtOnce;
        count -= steps * PixelsAtOnce;
    }
    for (int i = 0; i < count; ++i)
        addOne(pixels[i] & 0xFF00FF, pixels[i] >> 8 & 0xFF);
}

/// 16 bits each of red, green, blue and alpha.
void addDeepPixels(const quint16* channels, int count, Sums& sums) {
    for (int i = 0; i < count; ++i, channels += 4) {
        sums.red += channels[0];
        sums.green += channels[1];
        sums.blue += channels[2];
    }
}

bool isDeep(const QImage& image) {
    return image.format() == QImage::Format_RGBX64 || image.format() == QImage::Format_RGBA64;
}

bool isPlain(const QImage& image) {
    return image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32;
}

} // namespace

std::optional<RGBColor> averageColor(const QImage& image) {
    if (image.isNull() || image.depth() < 24)
        return std::nullopt;
    const QImage readable = isDeep(image) || isPlain(image) ? image : image.convertToFormat(QImage::Format_ARGB32);
    Sums sums;
    for (int y = 0; y < readable.height(); ++y) {
        const auto* row = readable.constScanLine(y);
        if (isDeep(readable))
            addDeepPixels(reinterpret_cast<const quint16*>(row), readable.width(), sums);
        else
            addWords(reinterpret_cast<const std::uint32_t*>(row), readable.width(), sums);
    }
    const double whole = static_cast<double>(readable.width()) * readable.height() * (isDeep(readable) ? 65535 : 255);
    if (whole <= 0)
        return std::nullopt;
    return RGBColor{static_cast<double>(sums.red) / whole, static_cast<double>(sums.green) / whole,
        static_cast<double>(sums.blue) / whole};
}

} // namespace Ostrel
