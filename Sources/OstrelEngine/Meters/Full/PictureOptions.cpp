#include "OstrelEngine/Meters/Full/PictureOptions.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Meters/ImageLoader.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QImage>
#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <string>

namespace Ostrel {

namespace {

constexpr PictureOptions::Matrix Identity
    = {{{1, 0, 0, 0, 0}, {0, 1, 0, 0, 0}, {0, 0, 1, 0, 0}, {0, 0, 0, 1, 0}, {0, 0, 0, 0, 1}}};

/// Options under a prefix.
class Reader {
public:
    Reader(const Options& options, std::string_view prefix)
        : options_(options)
        , prefix_(prefix) { }

    std::string_view text(std::string_view name) const {
        const auto* value = prefix_.empty() ? options_.find(name) : options_.find(prefix_ + std::string(name));
        return value ? OptionValues::unquoted(trimmed(*value)) : std::string_view();
    }
    double number(std::string_view name) const {
        return boundedCoordinate(OptionValues::number(text(name)).value_or(0));
    }
    bool isOn(std::string_view name) const { return OptionValues::isOn(text(name)).value_or(false); }

private:
    const Options& options_;
    std::string prefix_;
};

std::optional<PictureOptions::Crop> cropOf(std::string_view text) {
    const auto numbers = OptionValues::numbers(text, ',');
    if (numbers.size() < 4 || !std::all_of(numbers.begin(), numbers.begin() + 4, [](const auto& n) { return n; }))
        return std::nullopt;
    const auto at = [&](std::size_t i) { return std::trunc(boundedCoordinate(*numbers[i])); };
    PictureOptions::Crop crop{at(0), at(1), at(2), at(3), 1};
    if (crop.width < 0 || crop.height < 0)
        return std::nullopt;
    if (numbers.size() > 4 && numbers[4] && *numbers[4] >= 1 && *numbers[4] < 6)
        crop.origin = static_cast<int>(*numbers[4]);
    return crop;
}

std::optional<PictureOptions::Matrix> matrixOf(const Reader& reader) {
    auto matrix = Identity;
    bool isWritten = false;
    for (std::size_t row = 0; row < matrix.size(); ++row) {
        const std::string name = "ColorMatrix" + std::string(1, static_cast<char>('1' + row));
        auto text = reader.text(name);
        if (text.empty())
            text = reader.text("Image" + name);
        const auto numbers = OptionValues::numbers(text, ';');
        if (numbers.size() != 5 || !std::ranges::all_of(numbers, [](const auto& n) { return n.has_value(); }))
            continue;
        isWritten = true;
        for (std::size_t i = 0; i < 5; ++i)
            matrix[row][i] = static_cast<float>(boundedCoordinate(*numbers[i]));
    }
    return isWritten && matrix != Identity ? std::optional(matrix) : std::nullopt;
}

bool isTooLarge(double width, double height) {
    return width * height > static_cast<double>(ImageLoader::MostPixels);
}

QImage withAlpha(const QImage& picture) {
    return picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

QImage cropped(const QImage& picture, const PictureOptions::Crop& crop) {
    if (crop.width < 1 || crop.height < 1 || isTooLarge(crop.width, crop.height))
        return {};
    const bool isRight = crop.origin == 2 || crop.origin == 3;
    const bool isBottom = crop.origin == 3 || crop.origin == 4;
    const int left = crop.origin == 5 ? picture.width() / 2 : isRight ? picture.width() : 0;
    const int top = crop.origin == 5 ? picture.height() / 2 : isBottom ? picture.height() : 0;
    const QRect part(left + static_cast<int>(crop.x), top + static_cast<int>(crop.y), static_cast<int>(crop.width),
        static_cast<int>(crop.height));
    // What lies outside of the picture is transparent.
    return (picture.rect().contains(part) ? picture : withAlpha(picture)).copy(part);
}

QImage rotated(const QImage& picture, double degrees) {
    degrees = std::fmod(degrees, 360);
    if (degrees == 0)
        return picture;
    QTransform turn;
    turn.rotate(degrees);
    const QSizeF size = turn.mapRect(QRectF(picture.rect())).size();
    if (isTooLarge(size.width(), size.height()))
        return {};
    if (std::fmod(degrees, 90) == 0)
        return picture.transformed(turn);
    QImage result(std::max(1, static_cast<int>(std::lround(size.width()))),
        std::max(1, static_cast<int>(std::lround(size.height()))), QImage::Format_ARGB32_Premultiplied);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.translate(result.width() / 2.0, result.height() / 2.0);
    painter.rotate(degrees);
    painter.drawImage(QPointF(-picture.width() / 2.0, -picture.height() / 2.0), picture);
    return result;
}

template <typename Change> QImage changed(const QImage& picture, Change change) {
    QImage result = withAlpha(picture);
    for (int y = 0; y < result.height(); ++y) {
        auto* pixels = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x)
            pixels[x] = change(pixels[x]);
    }
    return result;
}

QRgb grey(QRgb pixel) {
    // The weights add up to more than 1; a premultiplied channel is at most the opacity.
    const int sum = (qRed(pixel) * 33 + qGreen(pixel) * 59 + qBlue(pixel) * 11 + 50) / 100;
    const int shade = std::min(sum, qAlpha(pixel));
    return qRgba(shade, shade, shade, qAlpha(pixel));
}

QRgb tinted(QRgb pixel, const std::array<std::uint8_t, 4>& tint) {
    const auto times = [](int channel, int factor) { return (channel * factor + 127) / 255; };
    const auto color = [&](int channel, int factor) { return times(times(channel, factor), tint[3]); };
    return qRgba(color(qRed(pixel), tint[0]), color(qGreen(pixel), tint[1]), color(qBlue(pixel), tint[2]),
        times(qAlpha(pixel), tint[3]));
}

QRgb mixed(QRgb pixel, const PictureOptions::Matrix& matrix) {
    const QRgb plain = qUnpremultiply(pixel);
    const std::array<float, 5> in = {static_cast<float>(qRed(plain)) / 255, static_cast<float>(qGreen(plain)) / 255,
        static_cast<float>(qBlue(plain)) / 255, static_cast<float>(qAlpha(plain)) / 255, 1};
    std::array<int, 4> out{};
    for (std::size_t column = 0; column < out.size(); ++column) {
        float sum = 0;
        for (std::size_t row = 0; row < in.size(); ++row)
            sum += in[row] * matrix[row][column];
        out[column] = static_cast<int>(std::clamp(sum, 0.0F, 1.0F) * 255 + 0.5F);
    }
    return qPremultiply(qRgba(out[0], out[1], out[2], out[3]));
}

} // namespace

PictureOptions PictureOptions::parse(const Options& options, std::string_view prefix) {
    const Reader reader(options, prefix);
    PictureOptions result;
    result.isUpright = reader.isOn("UseExifOrientation");
    result.crop = cropOf(reader.text("ImageCrop"));
    const auto flip = reader.text("ImageFlip");
    const bool flipsBoth = equalsIgnoringCase(flip, "Both");
    result.flipsSides = flipsBoth || equalsIgnoringCase(flip, "Horizontal");
    result.flipsUpsideDown = flipsBoth || equalsIgnoringCase(flip, "Vertical");
    result.rotation = reader.number("ImageRotate");
    result.isGrey = reader.isOn("Greyscale");
    result.matrix = matrixOf(reader);
    if (const auto tint = OptionValues::color(reader.text("ImageTint")))
        result.tint = *tint;
    if (const auto alpha = OptionValues::number(reader.text("ImageAlpha")))
        result.tint[3] = static_cast<std::uint8_t>(std::clamp(*alpha, 0.0, 255.0));
    return result;
}

QImage PictureOptions::applied(const QImage& picture) const {
    QImage result = picture;
    if (crop && !result.isNull())
        result = cropped(result, *crop);
    if ((flipsSides || flipsUpsideDown) && !result.isNull())
        result = result.mirrored(flipsSides, flipsUpsideDown);
    if (rotation != 0 && !result.isNull())
        result = rotated(result, rotation);
    if (result.isNull())
        return result;
    if (isGrey)
        result = changed(result, grey);
    if (matrix)
        return changed(result, [&](QRgb pixel) { return mixed(pixel, *matrix); });
    constexpr std::array<std::uint8_t, 4> NoTint = {255, 255, 255, 255};
    return tint == NoTint ? result : changed(result, [&](QRgb pixel) { return tinted(pixel, tint); });
}

} // namespace Ostrel
