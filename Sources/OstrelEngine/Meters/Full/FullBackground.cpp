#include "OstrelEngine/Meters/Full/FullBackground.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <utility>

namespace Ostrel {

namespace {

constexpr int ColorMode = 2;
constexpr int NoMode = 1;

int modeOf(const Options& options) {
    return OptionValues::integer(option(options, "BackgroundMode"_key).value_or("")).value_or(NoMode);
}

bool isColorOption(std::string_view key) {
    constexpr std::array<std::string_view, 6> Names
        = {"SolidColor", "SolidColor2", "GradientAngle", "BevelType", "BevelColor", "BevelColor2"};
    return std::ranges::any_of(Names, [&](std::string_view name) { return equalsIgnoringCase(key, name); });
}

/// The options that act on a picture, or on a box of color: what belongs to another mode is left out, as is all that a
/// meter would take for its own.
bool isUsed(std::string_view key, int mode) {
    if (mode == ColorMode)
        return isColorOption(key);
    return hasPrefixIgnoringCase(key, "BACKGROUND") || hasPrefixIgnoringCase(key, "IMAGE")
        || hasPrefixIgnoringCase(key, "COLORMATRIX") || equalsIgnoringCase(key, "Greyscale")
        || equalsIgnoringCase(key, "UseExifOrientation");
}

} // namespace

std::shared_ptr<FullBackground> FullBackground::create(const Options& skinSection, const FullMeterContext& context) {
    const int mode = modeOf(skinSection);
    Options used;
    used.set("BackgroundMode", std::string(Ostrel::option(skinSection, "BackgroundMode"_key).value_or("")));
    for (const auto& [key, value, hash] : skinSection)
        if (isUsed(key, mode))
            used.set(key, value);
    if (mode == ColorMode && !OptionValues::color(Ostrel::option(used, "SolidColor"_key).value_or("")))
        used.set("SolidColor", "128,128,128,255");
    MeterDefinition definition;
    definition.sectionName = "Rainmeter";
    return std::make_shared<FullBackground>(definition, std::move(used), context);
}

FullBackground::FullBackground(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : FullMeter(definition, std::move(options), context)
    , picture_(context) { }

void FullBackground::readOptions() {
    const int mode = modeOf(options());
    mode_ = mode < 0 || mode > 4 ? Mode::None : static_cast<Mode>(mode);
    name_ = OptionValues::unquoted(text("Background"_key));
    margins_ = PictureMargins::parse(text("BackgroundMargins"_key));
    picture_.setOptions(options());
    ++revision_;
    contentDidChange();
}

void FullBackground::takeValues(MeasureValues) {
    const bool hasPicture = mode_ != Mode::None && mode_ != Mode::Color;
    if (!picture_.show(hasPicture ? std::string_view(name_) : std::string_view()))
        return;
    ++revision_;
    contentDidChange();
}

Size FullBackground::contentSize(std::optional<double>, std::optional<double>) const {
    // A picture as it is wants all of it to be seen; one that is stretched or repeated takes what there is.
    const QImage& image = picture_.image();
    return mode_ == Mode::Picture ? Size{static_cast<double>(image.width()), static_cast<double>(image.height())}
                                  : Size();
}

void FullBackground::drawContent(QPainter& painter) {
    const QImage& image = picture_.image();
    const QRectF area = toQRectF(contentRect());
    if (image.isNull() || area.isEmpty())
        return;
    drawn_.draw(painter, area, revision_, [&](QPainter& inner) {
        inner.setRenderHint(QPainter::SmoothPixmapTransform);
        if (mode_ == Mode::Picture)
            inner.drawImage(area.topLeft(), image);
        else if (mode_ == Mode::Stretched)
            PictureDrawing::drawInPieces(inner, image, area, margins_);
        else
            PictureDrawing::drawTiled(inner, image, area);
    });
}

} // namespace Ostrel
