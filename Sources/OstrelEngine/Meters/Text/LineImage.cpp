#include "OstrelEngine/Meters/Text/LineImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Ostrel {

namespace {

/// A line as large as a screen leaves less than this behind.
constexpr std::size_t MostPixelsKept = 1 << 20;

/// Each of the four bytes times `factor` / 255, rounded.
constexpr QRgb scaled(QRgb pixel, std::uint32_t factor) {
    constexpr std::uint32_t EvenBytes = 0x00FF00FF;
    constexpr std::uint32_t Half = 0x00800080;
    std::uint32_t even = (pixel & EvenBytes) * factor;
    even = ((even + ((even >> 8) & EvenBytes) + Half) >> 8) & EvenBytes;
    std::uint32_t odd = ((pixel >> 8) & EvenBytes) * factor;
    odd = (odd + ((odd >> 8) & EvenBytes) + Half) & ~EvenBytes;
    return even | odd;
}

void blendCoverage(QRgb* to, const std::uint8_t* coverage, int count, const std::array<QRgb, 256>& ramp) {
    for (int x = 0; x < count; ++x) {
        const QRgb source = ramp[coverage[x]];
        // Glyphs seldom touch, so this is nearly always the whole work.
        if (to[x] == 0)
            to[x] = source;
        else
            to[x] = source + scaled(to[x], 255 - (source >> 24));
    }
}

void blendPixels(QRgb* to, const std::uint8_t* pixels, int count, std::uint32_t opacity) {
    for (int x = 0; x < count; ++x) {
        QRgb pixel = 0;
        std::memcpy(&pixel, pixels + x * 4, 4);
        // An emoji has its own colors and takes only the text's opacity.
        pixel = scaled(pixel, opacity);
        to[x] = pixel + scaled(to[x], 255 - (pixel >> 24));
    }
}

/// From the middle outward; all of them, both sides counted, sum up to 1.
std::vector<float> gaussian(double standardDeviation) {
    const int radius = static_cast<int>(std::ceil(standardDeviation * 3));
    std::vector<float> weights;
    double sum = 0;
    for (int i = 0; i <= radius; ++i) {
        const double weight = i == 0 ? 1 : std::exp(-i * i / (2 * standardDeviation * standardDeviation));
        weights.push_back(static_cast<float>(weight));
        sum += i == 0 ? weight : 2 * weight;
    }
    for (auto& weight : weights)
        weight = static_cast<float>(weight / sum);
    return weights;
}

/// Blurs along one axis: `count` values `stride` apart, from `from` to `to`.
void blur(const float* from, float* to, int count, std::ptrdiff_t stride, const std::vector<float>& weights) {
    const int radius = static_cast<int>(weights.size()) - 1;
    for (int i = 0; i < count; ++i) {
        float sum = from[i * stride] * weights[0];
        for (int k = 1; k <= radius; ++k) {
            const float before = i >= k ? from[(i - k) * stride] : 0;
            const float after = i + k < count ? from[(i + k) * stride] : 0;
            sum += (before + after) * weights[static_cast<std::size_t>(k)];
        }
        to[i * stride] = sum;
    }
}

} // namespace

void LineImage::begin(const QRect& deviceRect) {
    rect_ = deviceRect;
    const auto count = static_cast<std::size_t>(rect_.width()) * static_cast<std::size_t>(rect_.height());
    if (pixels_.size() > MostPixelsKept && count <= MostPixelsKept)
        pixels_ = {};
    if (pixels_.size() < count)
        pixels_.resize(count);
    std::memset(pixels_.data(), 0, count * sizeof(QRgb));
}

QImage LineImage::view() {
    return QImage(reinterpret_cast<const uchar*>(pixels_.data()), rect_.width(), rect_.height(), rect_.width() * 4,
        QImage::Format_ARGB32_Premultiplied);
}

void LineImage::setColor(QRgb color) {
    if (ramp_[255] == color)
        return;
    for (std::uint32_t coverage = 0; coverage < ramp_.size(); ++coverage)
        ramp_[coverage] = scaled(color, coverage);
}

void LineImage::blend(const GlyphBitmap& glyph, QPoint origin) {
    const int x = origin.x() + glyph.left - rect_.x();
    const int y = origin.y() + glyph.top - rect_.y();
    const int left = std::max(0, x);
    const int right = std::min(rect_.width(), x + glyph.width);
    const int bottom = std::min(rect_.height(), y + glyph.height);
    if (left >= right)
        return;
    const int bytesPerPixel = glyph.isColored ? 4 : 1;
    for (int row = std::max(0, y); row < bottom; ++row) {
        QRgb* to = pixels_.data() + static_cast<std::ptrdiff_t>(row) * rect_.width() + left;
        const auto* from
            = glyph.pixels + (static_cast<std::ptrdiff_t>(row - y) * glyph.width + (left - x)) * bytesPerPixel;
        if (glyph.isColored)
            blendPixels(to, from, right - left, ramp_[255] >> 24);
        else
            blendCoverage(to, from, right - left, ramp_);
    }
}

void LineImage::fill(const QRect& deviceRect) {
    const QRect visible = (deviceRect & rect_).translated(-rect_.topLeft());
    for (int y = visible.top(); y <= visible.bottom(); ++y) {
        QRgb* to = pixels_.data() + static_cast<std::ptrdiff_t>(y) * rect_.width() + visible.left();
        for (int x = 0; x < visible.width(); ++x)
            to[x] = ramp_[255] + scaled(to[x], 255 - (ramp_[255] >> 24));
    }
}

void LineImage::turnIntoShadow(double standardDeviation, QRgb color) {
    const int width = rect_.width();
    const int height = rect_.height();
    const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    std::vector<float> opacity(count);
    for (std::size_t i = 0; i < count; ++i)
        opacity[i] = static_cast<float>(pixels_[i] >> 24);
    if (standardDeviation > 0.1) {
        const auto weights = gaussian(standardDeviation);
        std::vector<float> blurred(count);
        for (int y = 0; y < height; ++y)
            blur(&opacity[static_cast<std::size_t>(y * width)], &blurred[static_cast<std::size_t>(y * width)], width, 1,
                weights);
        for (int x = 0; x < width; ++x)
            blur(&blurred[static_cast<std::size_t>(x)], &opacity[static_cast<std::size_t>(x)], height, width, weights);
    }
    for (std::size_t i = 0; i < count; ++i)
        pixels_[i] = scaled(color, static_cast<std::uint32_t>(opacity[i] + 0.5F));
}

} // namespace Ostrel
