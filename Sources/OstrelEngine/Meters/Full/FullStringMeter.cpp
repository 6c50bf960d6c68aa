#include "OstrelEngine/Meters/Full/FullStringMeter.h"

#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Full/FullStringOptions.h"
#include "OstrelEngine/Meters/Painting.h"
#include "OstrelEngine/Meters/Text/FontLibrary.h"

#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel {

struct FullStringMeter::State {
    /// True when the text is another.
    bool format(MeasureValues current) {
        if (isFormatted && std::equal(values.begin(), values.end(), current.begin(), current.end()))
            return false;
        values.assign(current.begin(), current.end());
        isFormatted = true;
        auto formatted = options.formattedText(current);
        if (!options.inlineSettings.isEmpty())
            formatted = options.inlineSettings.withCases(std::move(formatted));
        if (isStyled && formatted == text)
            return false;
        text = std::move(formatted);
        restyle();
        return true;
    }

    void restyle() {
        if (!options.style.typeface)
            options.style.typeface = FontLibrary::shared().familyTypeface(options.style.family);
        styled = options.inlineSettings.styled(text, options.style);
        isStyled = true;
        laidOut.reset();
        ++revision;
    }

    const StyledLayout& layout(std::optional<double> width, std::optional<double> height) {
        const auto room = options.room(width, height);
        if (!laidOut || room != laidOutIn)
            laidOut = options.style.typeface ? StyledLayouts::layout(styled, room) : StyledLayout();
        laidOutIn = room;
        return *laidOut;
    }

    FullStringOptions options;
    bool isParsed = false;

    std::vector<MeasureValue> values;
    bool isFormatted = false;
    std::string text;
    StyledText styled;
    bool isStyled = false;

    std::optional<StyledLayout> laidOut;
    StyledLayouts::Room laidOutIn;
    /// Grows with each change of what is drawn.
    std::uint64_t revision = 0;
    /// With Angle.
    DevicePicture turned;
};

FullStringMeter::FullStringMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : FullMeter(definition, std::move(options), context)
    , state_(std::make_unique<State>()) { }

FullStringMeter::~FullStringMeter() = default;

void FullStringMeter::readOptions() {
    auto parsed = FullStringOptions::parse(options(), state_->options);
    // A look-up of its own would make no difference where the font is the same.
    if (parsed.style.family == state_->options.style.family)
        parsed.style.typeface = state_->options.style.typeface;
    if (state_->isParsed && parsed == state_->options)
        return;
    state_->options = std::move(parsed);
    state_->isParsed = true;
    state_->isFormatted = false;
    state_->isStyled = false;
    contentDidChange();
}

void FullStringMeter::takeValues(MeasureValues values) {
    if (state_->format(values))
        contentDidChange();
}

Size FullStringMeter::contentSize(std::optional<double> width, std::optional<double> height) const {
    const auto& layout = state_->layout(width, height);
    Size size{std::floor(layout.width), std::floor(layout.height)};
    // A line that sticks out of its room is cut there.
    if (const auto& room = state_->laidOutIn; room.width)
        size.width = std::min(size.width, *room.width);
    return size;
}

Point FullStringMeter::anchorOffset(Size box) const {
    const auto& look = state_->options.look;
    Point offset;
    if (look.alignment != HorizontalAlignment::left)
        offset.x = look.alignment == HorizontalAlignment::center ? std::trunc(box.width / 2) : box.width;
    if (look.verticalAlignment != VerticalAlignment::top)
        offset.y = look.verticalAlignment == VerticalAlignment::center ? std::trunc(box.height / 2) : box.height;
    return offset;
}

std::optional<std::string> FullStringMeter::displayedText(MeasureValues) {
    return state_->text;
}

Point FullStringMeter::pivot() const {
    return {frame().x + anchorOffset({frame().w, frame().h}).x, frame().y};
}

void FullStringMeter::drawContent(QPainter& painter) {
    const auto& layout = state_->layout(writtenWidth(), writtenHeight());
    const auto& options = state_->options;
    const Rect content = contentRect();
    if (options.angle == 0)
        return StyledPainter::draw(painter, state_->styled, layout, content, options.look);
    state_->turned.draw(painter, toQRectF(contentPaintRect()), state_->revision, [&](QPainter& inner) {
        const Point center = pivot();
        inner.translate(center.x, center.y);
        inner.rotate(options.angle * 180 / std::numbers::pi);
        inner.translate(-center.x, -center.y);
        StyledPainter::drawOutlines(inner, state_->styled, layout, content, options.look);
    });
}

Rect FullStringMeter::contentPaintRect() const {
    const auto& layout = state_->layout(writtenWidth(), writtenHeight());
    const auto& options = state_->options;
    const Rect upright = StyledPainter::paintRect(state_->styled, layout, contentRect(), options.look);
    if (options.angle == 0)
        return upright;
    const Point center = pivot();
    QTransform turn;
    turn.translate(center.x, center.y);
    turn.rotate(options.angle * 180 / std::numbers::pi);
    turn.translate(-center.x, -center.y);
    return toRect(turn.mapRect(toQRectF(upright))).expanded(1);
}

} // namespace Ostrel
