#include "OstrelEngine/Meters/ImageMeter.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/ColorParser.h"
#include "OstrelEngine/Meters/FittedImage.h"
#include "OstrelEngine/Meters/ImageLoader.h"
#include "OstrelEngine/Meters/Painting.h"
#include "OstrelPlatform/Platform.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

namespace Ostrel {

namespace {

enum class AspectMode { stretch, cover, fit };

struct Style {
    std::optional<std::string> imageName;
    std::optional<Color> solidColor;
    std::optional<Color> tint;
    AspectMode aspect = AspectMode::stretch;

    friend bool operator==(const Style&, const Style&) = default;
};

Style parseStyle(const Options& options) {
    Style style;
    style.imageName = option(options, "ImageName"_key);
    style.solidColor = ColorParser::parse(option(options, "SolidColor"_key).value_or(""));
    style.tint = ColorParser::parse(option(options, "ImageTint"_key).value_or(""));
    const auto mode = parseInteger(option(options, "PreserveAspectRatio"_key).value_or("")).value_or(0);
    if (mode != 0)
        style.aspect = mode == 2 ? AspectMode::cover : AspectMode::fit;
    return style;
}

bool isNameCharacter(char c) {
    return c == '_' || (c >= '0' && c <= '9') || (asciiUpper(c) >= 'A' && asciiUpper(c) <= 'Z');
}

/// The length of "[name]" at the beginning of the text, or 0.
std::size_t referenceLength(std::string_view text) {
    std::size_t end = 1;
    while (end < text.size() && isNameCharacter(text[end]))
        ++end;
    return end > 1 && end < text.size() && text[end] == ']' ? end + 1 : 0;
}

std::optional<std::string> replacementOf(const MeasureValue& value) {
    if (value.preferStringValue || !value.stringValue.empty()) {
        const auto text = trimmed(value.stringValue);
        return text.empty() ? std::nullopt : std::optional<std::string>(text);
    }
    return std::isfinite(value.numericValue) ? std::optional(formatGeneral(value.numericValue, 10)) : std::nullopt;
}

/// The n-th reference of the name stands for the n-th value, whatever it is called.
std::string dynamicName(std::string_view name, MeasureValues values) {
    std::string result;
    std::size_t reference = 0;
    while (!name.empty()) {
        const auto length = name.front() == '[' ? referenceLength(name) : 0;
        const auto replacement
            = length > 0 && reference < values.size() ? replacementOf(values[reference]) : std::nullopt;
        const auto taken = name.substr(0, std::max<std::size_t>(1, length));
        result += replacement ? *replacement : std::string(taken);
        reference += length > 0;
        name.remove_prefix(taken.size());
    }
    return result;
}

QImage tinted(const QImage& image, const Color& tint) {
    QImage result = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&result);
    painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
    painter.fillRect(result.rect(), toQColor(tint));
    return result;
}

/// Where the picture goes, centered on the rectangle.
Rect destinationOf(const QImage& image, const Rect& rect, AspectMode mode) {
    if (mode == AspectMode::stretch || image.isNull() || rect.isEmpty())
        return rect;
    const double imageAspect = static_cast<double>(image.width()) / image.height();
    const bool isNarrower = rect.width / rect.height < imageAspect;
    const bool takesHeight = isNarrower == (mode == AspectMode::cover);
    const double width = takesHeight ? rect.height * imageAspect : rect.width;
    const double height = takesHeight ? rect.height : rect.width / imageAspect;
    return {rect.x + (rect.width - width) / 2, rect.y + (rect.height - height) / 2, width, height};
}

/// One side alone keeps the image's proportions.
Size proportionalSize(Size size, Size image) {
    if (size.width > 0)
        return {size.width, (size.width / image.width) * image.height};
    if (size.height > 0)
        return {(size.height / image.height) * image.width, size.height};
    return image;
}

} // namespace

struct ImageMeter::State {
    State(std::string path, RemoteReader& reader)
        : skinPath(std::move(path))
        , remoteReader(reader) { }

    const Style& style(const Options& options) {
        if (!parsed)
            parsed = parseStyle(options);
        return *parsed;
    }

    void load(const std::string& name) {
        loadedName = name;
        tintedImage = {};
        image = ImageLoader::load(resolveImagePath(name, skinPath), remoteReader);
    }

    /// Absent when nothing names an image.
    std::optional<std::string> sourceName(const Style& style, MeasureValues values) const {
        std::string_view name;
        std::string resolved;
        if (style.imageName)
            name = isDynamic ? (resolved = dynamicName(*style.imageName, values)) : *style.imageName;
        else if (!values.empty())
            name = values.front().stringValue;
        name = trimmed(name);
        return name.empty() ? std::nullopt : std::optional<std::string>(name);
    }

    const QImage& shownImage(const Style& style) {
        if (!style.tint || image.isNull())
            return image;
        if (tintedImage.isNull() || tint != *style.tint)
            tintedImage = tinted(image, *style.tint);
        tint = *style.tint;
        return tintedImage;
    }

    std::string skinPath;
    RemoteReader& remoteReader;
    bool isDynamic = false;
    std::optional<Style> parsed;

    /// The name that was loaded last, also when there was no such image: it is not tried again.
    std::optional<std::string> loadedName;
    QImage image;
    QImage tintedImage;
    Color tint;
    FittedImage fitted;

    /// What the last draw was told to show.
    std::optional<Style> shownStyle;
    std::optional<std::string> shownName;
};

ImageMeter::ImageMeter(
    const MeterDefinition& definition, Options options, const std::string& skinPath, const Platform& platform)
    : MeterRenderer(definition.sectionName, std::move(options))
    , state_(std::make_unique<State>(skinPath, platform.remoteReader)) {
    state_->isDynamic = option("DynamicVariables"_key) == "1";
    // At once, so that the layout knows the size before anything is drawn.
    if (const auto name = option("ImageName"_key); name && !state_->isDynamic)
        state_->load(std::string(*name));
}

ImageMeter::~ImageMeter() = default;

std::string ImageMeter::resolveImagePath(std::string_view imageName, std::string_view skinPath) {
    const auto skinDirectory = deletingLastPathComponent(skinPath);
    std::string path(imageName);
    if (path.find("#@#") != std::string::npos)
        path = replacingOccurrences(path, "#@#", sharedResourcesDirectory(skinDirectory) + '/');
    path = normalizeSeparators(replacingOccurrences(path, "#CURRENTPATH#", skinDirectory + '/'));
    if (ImageLoader::isImageURL(path) || isAbsolutePath(path))
        return path;
    return appendingPathComponent(skinDirectory, path);
}

void ImageMeter::draw(QPainter& painter, MeasureValues values) {
    const auto& style = state_->style(options());
    if (const auto name = state_->sourceName(style, values); name && name != state_->loadedName)
        state_->load(*name);
    const Rect rect = frame().rect();
    if (style.solidColor)
        fillRect(painter, rect, *style.solidColor, true);
    const QImage& image = state_->shownImage(style);
    const Rect destination = destinationOf(image, rect, style.aspect);
    state_->fitted.draw(painter, image, toQRectF(destination), toQRectF(rect));
}

bool ImageMeter::updateAppearance(MeasureValues values) {
    const auto& style = state_->style(options());
    const auto name = state_->sourceName(style, values);
    // Not only when it is drawn: without a size of its own the meter is nowhere to be drawn until its picture is known.
    if (name && name != state_->loadedName)
        state_->load(*name);
    const bool isOther = state_->shownStyle != style || (name && name != state_->shownName);
    state_->shownStyle = style;
    if (name)
        state_->shownName = name;
    return isOther;
}

Rect ImageMeter::paintRect(MeasureValues) {
    return frame().rect();
}

Size ImageMeter::naturalSize(MeasureValues, Size written) {
    if (written.isComplete())
        return written;
    Size size = written;
    if (const auto image = imageSize())
        size = proportionalSize(size, *image);
    // A picture that is still to come takes a square.
    const bool isDynamic = option("DynamicVariables"_key) == "1";
    if (isDynamic && size.width > 0 && !(size.height > 0))
        size.height = size.width;
    return size;
}

bool ImageMeter::isWaitingForLayout() const {
    return !Size{frame().w, frame().h}.isComplete() && imageSize();
}

std::optional<Size> ImageMeter::imageSize() const {
    const auto& image = state_->image;
    if (image.isNull())
        return std::nullopt;
    return Size{static_cast<double>(image.width()), static_cast<double>(image.height())};
}

void ImageMeter::optionsDidChange() {
    state_->parsed.reset();
}

} // namespace Ostrel
