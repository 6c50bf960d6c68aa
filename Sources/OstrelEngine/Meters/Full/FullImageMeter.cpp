#include "OstrelEngine/Meters/Full/FullImageMeter.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/Full/NumberFormat.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace Ostrel {

FullImageMeter::FullImageMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : FullMeter(definition, std::move(options), context)
    , picture_(context)
    , mask_(context) { }

void FullImageMeter::readOptions() {
    Look look;
    look.name = OptionValues::unquoted(text("ImageName"_key));
    const bool hasOneSide = writtenWidth().has_value() != writtenHeight().has_value();
    const int aspect = integer("PreserveAspectRatio"_key, hasOneSide ? 1 : 0);
    if (aspect != 0)
        look.fit = aspect == 2 ? PictureFit::Fill : PictureFit::Inside;
    look.margins = PictureMargins::parse(text("ScaleMargins"_key));
    const auto mask = trimmed(OptionValues::unquoted(text("MaskImageName"_key)));
    if (!mask.empty())
        look.kind = Kind::Masked;
    else if (isOn("Tile"_key, false))
        look.kind = Kind::Tiled;
    else if (look.fit == PictureFit::Stretch && !look.margins.isEmpty())
        look.kind = Kind::InPieces;
    const bool isOther = picture_.setOptions(options());
    const bool hasOtherMask = mask_.setOptions(options(), "Mask") | mask_.show(mask);
    if (look == look_ && !isOther && !hasOtherMask)
        return;
    look_ = std::move(look);
    isNamed_ = false;
    ++composition_;
    contentDidChange();
}

void FullImageMeter::takeValues(MeasureValues values) {
    if (!isNamed_ || !std::equal(values.begin(), values.end(), values_.begin(), values_.end())) {
        values_.assign(values.begin(), values.end());
        // A measure's text stands for a name without places.
        const bool isMeasured = !values.empty() && look_.name.find('%') == std::string::npos;
        name_ = replacingPlaces(isMeasured ? std::string_view("%1") : look_.name, values, {});
        isNamed_ = true;
    }
    if (!picture_.show(name_))
        return;
    ++composition_;
    contentDidChange();
}

Size FullImageMeter::contentSize(std::optional<double> width, std::optional<double> height) const {
    const QImage& image = look_.kind == Kind::Masked ? mask_.image() : picture_.image();
    if (image.isNull())
        return {};
    const Size own{static_cast<double>(image.width()), static_cast<double>(image.height())};
    if (width && look_.kind != Kind::Tiled)
        return {*width, *width * own.height / own.width};
    if (height && look_.kind != Kind::Tiled)
        return {*height * own.width / own.height, *height};
    return own;
}

void FullImageMeter::drawContent(QPainter& painter) {
    const QImage& image = picture_.image();
    const Rect content = contentRect();
    if (image.isNull() || content.isEmpty())
        return;
    if (look_.kind == Kind::Fitted) {
        const Rect destination = PictureDrawing::placed(image, content, look_.fit);
        return fitted_.draw(painter, image, toQRectF(destination), toQRectF(content));
    }
    composed_.draw(painter, toQRectF(content), composition_, [&](QPainter& inner) {
        if (look_.kind == Kind::Tiled)
            PictureDrawing::drawTiled(inner, image, toQRectF(content));
        else if (look_.kind == Kind::InPieces)
            PictureDrawing::drawInPieces(inner, image, toQRectF(content), look_.margins);
        else
            PictureDrawing::drawMasked(inner, image, mask_.image(), content);
    });
}

} // namespace Ostrel
