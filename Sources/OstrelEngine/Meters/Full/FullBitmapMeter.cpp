#include "OstrelEngine/Meters/Full/FullBitmapMeter.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/Full/NumberFormat.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Ostrel {

namespace {

/// A number of 64 bits has no more digits, whatever their base.
constexpr int MostDigits = 64;

} // namespace

FullBitmapMeter::FullBitmapMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : FullMeter(definition, std::move(options), context)
    , picture_(context, PictureSource::Kind::Frames) { }

void FullBitmapMeter::readOptions() {
    Look look;
    look.name = OptionValues::unquoted(text("BitmapImage"_key));
    look.frames = std::max(1, integer("BitmapFrames"_key, 1));
    look.transitions = std::clamp(integer("BitmapTransitionFrames"_key, 0), 0, look.frames - 1);
    look.showsDigits = isOn("BitmapExtend"_key, false);
    look.digits = std::clamp(integer("BitmapDigits"_key, 0), 0, MostDigits);
    look.separation = std::trunc(boundedCoordinate(number("BitmapSeparation"_key, 0)));
    const auto align = text("BitmapAlign"_key);
    look.anchor = equalsIgnoringCase(align, "Center") ? 0.5 : equalsIgnoringCase(align, "Right") ? 1 : 0;
    const bool isOther = picture_.setOptions(options());
    if (look == look_ && !isOther)
        return;
    look_ = std::move(look);
    frames_.set(picture_.image(), look_.frames);
    hasShown_ = false;
    contentDidChange();
}

int FullBitmapMeter::realFrames() const {
    return std::max(1, look_.frames / (look_.transitions + 1));
}

std::vector<int> FullBitmapMeter::indexes(MeasureValues values) const {
    const int frames = realFrames();
    const MeasureValue none;
    const MeasureValue& value = values.empty() ? none : values.front();
    if (!look_.showsDigits) {
        // Alike with BitmapZeroFrame and without: 100 % shows the last frame.
        const double index = std::floor(value.percentFraction() * frames);
        return {std::clamp(static_cast<int>(index), 0, frames - 1)};
    }
    // A single frame has no digits to tell apart.
    if (frames < 2)
        return {0};
    const auto whole = numericAsInt64(std::round(std::abs(value.numericValue)));
    auto rest = static_cast<std::uint64_t>(whole);
    const auto base = static_cast<std::uint64_t>(frames);
    std::vector<int> digits;
    do {
        digits.push_back(static_cast<int>(rest % base));
        rest /= base;
    } while (look_.digits > 0 ? digits.size() < static_cast<std::size_t>(look_.digits) : rest > 0);
    std::reverse(digits.begin(), digits.end());
    return digits;
}

void FullBitmapMeter::takeValues(MeasureValues values) {
    const bool isOther = look_.name.find('%') == std::string::npos
        ? picture_.show(look_.name)
        : picture_.show(replacingPlaces(look_.name, values, {}));
    if (isOther) {
        frames_.set(picture_.image(), look_.frames);
        contentDidChange();
    }
    const auto wanted = indexes(values);
    const bool isSame = hasShown_ && wanted.size() == places_.size()
        && std::equal(wanted.begin(), wanted.end(), places_.begin(),
            [](int index, const Place& place) { return index == place.index; });
    if (isSame)
        return;
    const bool plays = hasShown_ && look_.transitions > 0 && wanted.size() == places_.size();
    places_.resize(wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        places_[i].before = plays ? places_[i].index : wanted[i];
        places_[i].index = wanted[i];
    }
    hasShown_ = true;
    step_ = plays ? std::optional(0) : std::nullopt;
    contentDidChange();
}

std::optional<double> FullBitmapMeter::secondsUntilNextFrame() const {
    return step_ ? std::optional(std::max(1.0, context().transitionUpdate) / 1000) : std::nullopt;
}

void FullBitmapMeter::advance() {
    if (!step_)
        return;
    if (++*step_ >= look_.transitions)
        step_.reset();
    contentDidChange();
}

int FullBitmapMeter::shownFrame(const Place& place) const {
    const int stride = look_.transitions + 1;
    return step_ && place.before != place.index ? place.before * stride + 1 + *step_ : place.index * stride;
}

Size FullBitmapMeter::contentSize(std::optional<double>, std::optional<double>) const {
    const Size frame = frames_.size();
    const auto count = static_cast<double>(places_.size());
    return {std::max(0.0, count * frame.width + (count - 1) * look_.separation), frame.height};
}

Point FullBitmapMeter::anchorOffset(Size box) const {
    return {std::trunc(box.width * look_.anchor), 0};
}

void FullBitmapMeter::drawContent(QPainter& painter) {
    const Rect content = contentRect();
    double x = content.x;
    for (auto& place : places_) {
        const QRectF target(x, content.y, frames_.size().width, frames_.size().height);
        place.fitted.draw(painter, frames_.frame(shownFrame(place)), target, target);
        x += frames_.size().width + look_.separation;
    }
}

Rect FullBitmapMeter::contentPaintRect() const {
    // The size is the frames' own, whatever is written.
    const Size own = contentSize(std::nullopt, std::nullopt);
    const Rect content = contentRect();
    return {content.x, content.y, std::max(own.width, frames_.size().width), own.height};
}

} // namespace Ostrel
