#include "OstrelEngine/Meters/StringMeter.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/Painting.h"
#include "OstrelEngine/Meters/StringOptions.h"
#include "OstrelEngine/Meters/Text/FontLibrary.h"
#include "OstrelEngine/Meters/Text/SetText.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

/// What is shown of a meter without a text of its own.
constexpr std::string_view DefaultTemplate = "%1";

std::string formattedText(const StringOptions& style, MeasureValues values) {
    const std::string_view textTemplate = style.textTemplate ? *style.textTemplate : DefaultTemplate;
    const auto text = TextFormatter::format(textTemplate, values, style.numbers);
    return replacingOccurrences(TextFormatter::applyCase(text, style.stringCase), "#CRLF#", "\n");
}

bool setsTextAlike(const StringOptions& a, const StringOptions& b) {
    return a.font == b.font && a.fontSize == b.fontSize && a.kerning == b.kerning;
}

} // namespace

struct StringMeter::State {
    /// Takes in options and values, once however often they are asked about.
    void refresh(const Options& options, MeasureValues current) {
        if (std::exchange(optionsChanged, false))
            restyle(StringOptions::parse(options));
        if (isFormatted && std::equal(values.begin(), values.end(), current.begin(), current.end()))
            return;
        values.assign(current.begin(), current.end());
        isFormatted = true;
        if (auto formatted = formattedText(style, current); formatted != text) {
            text = std::move(formatted);
            shown.setText(text);
            appearanceChanged = true;
        }
    }

    void restyle(StringOptions parsed) {
        if (setting.font.typeface && parsed == style)
            return;
        if (!setting.font.typeface || !setsTextAlike(parsed, style)) {
            auto typeface = FontLibrary::shared().typeface(parsed.font);
            setting = {{parsed.font, std::move(typeface)}, parsed.fontSize, parsed.kerning};
            shown.forgetLayouts();
            nothing.forgetLayouts();
        }
        style = std::move(parsed);
        isFormatted = false;
        appearanceChanged = true;
    }

    Size estimatedSize(std::optional<double> constrainedWidth) {
        if (constrainedWidth)
            constrainedWidth = std::max(1.0, *constrainedWidth);
        const auto& layout = (style.textTemplate ? shown : nothing).inLines(setting, constrainedWidth);
        const double padding = std::ceil(std::max(8.0, style.fontSize / 4));
        Size size;
        size.width = constrainedWidth.value_or(std::max(1.0, std::ceil(layout.width()) + padding));
        size.height = std::max(1.0, std::ceil(std::max(layout.height(), lineHeight())) + padding);
        return size;
    }

    double lineHeight() const {
        if (!setting.font.typeface)
            return 0;
        const auto& metrics = setting.font.typeface->metrics();
        return (metrics.ascent + metrics.descent + metrics.leading) * setting.size;
    }

    Rect textRect(const MeterFrame& frame) {
        const double widthHint = frame.w > 0 ? frame.w : style.width;
        const Size size = estimatedSize(style.hasWidth() ? std::optional(widthHint) : std::nullopt);
        Rect rect{frame.x, frame.y, size.width, size.height};
        if (style.hasWidth() && frame.w > 0)
            rect.width = frame.w;
        if (style.hasHeight() && frame.h > 0)
            rect.height = frame.h;
        if (style.look.alignment == HorizontalAlignment::center)
            rect.x -= rect.width / 2;
        else if (style.look.alignment == HorizontalAlignment::right)
            rect.x -= rect.width;
        return rect;
    }

    bool wraps() const { return style.hasWidth() || shown.hasLineBreak(); }

    const TextLayout& layoutIn(const Rect& rect) {
        if (style.clips)
            return shown.truncated(setting, {rect.width, rect.height});
        return shown.inLines(setting, wraps() ? std::optional(rect.width) : std::nullopt);
    }

    TextAppearance look() const {
        TextAppearance result = style.look;
        result.clipsWideLines = !style.clips && !wraps();
        return result;
    }

    bool optionsChanged = true;
    StringOptions style;
    TextSetting setting;

    bool isFormatted = false;
    std::vector<MeasureValue> values;
    std::string text;
    SetText shown;
    /// What is measured of a meter without a text of its own.
    SetText nothing;

    /// Since the canvas asked last.
    bool appearanceChanged = true;
};

StringMeter::StringMeter(const MeterDefinition& definition, Options options)
    : MeterRenderer(definition.sectionName, std::move(options))
    , state_(std::make_unique<State>()) { }

StringMeter::~StringMeter() = default;

void StringMeter::draw(QPainter& painter, MeasureValues values) {
    state_->refresh(options(), values);
    const Rect rect = state_->textRect(frame());
    const auto look = state_->look();
    if (state_->style.solidColor)
        fillRect(painter, rect, *state_->style.solidColor, look.antiAlias);
    TextPainter::draw(painter, state_->layoutIn(rect), state_->setting.size, rect, look);
}

Rect StringMeter::interactionRect(MeasureValues values) {
    state_->refresh(options(), values);
    return state_->textRect(frame());
}

bool StringMeter::updateAppearance(MeasureValues values) {
    state_->refresh(options(), values);
    return std::exchange(state_->appearanceChanged, false);
}

Rect StringMeter::paintRect(MeasureValues values) {
    state_->refresh(options(), values);
    const Rect rect = state_->textRect(frame());
    const Rect text = TextPainter::paintRect(state_->layoutIn(rect), state_->setting.size, rect, state_->look());
    return state_->style.solidColor ? text.united(rect) : text;
}

Size StringMeter::naturalSize(MeasureValues values, Size written) {
    if (written.isComplete())
        return written;
    state_->refresh(options(), values);
    return written.filledFrom(state_->estimatedSize(std::nullopt));
}

std::optional<std::string> StringMeter::displayedText(MeasureValues values) {
    state_->refresh(options(), values);
    return state_->text;
}

void StringMeter::optionsDidChange() {
    state_->optionsChanged = true;
}

} // namespace Ostrel
