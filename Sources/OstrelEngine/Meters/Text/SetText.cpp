#include "OstrelEngine/Meters/Text/SetText.h"

namespace Ostrel {

void SetText::setText(std::string_view text) {
    text_ = TextLayouts::preparedText(text);
    forgetLayouts();
}

void SetText::forgetLayouts() {
    unbroken_.reset();
    broken_.reset();
    truncated_.reset();
}

const TextLayout& SetText::inLines(const TextSetting& setting, std::optional<double> maximumWidth) {
    if (!unbroken_)
        unbroken_ = setting.font.typeface ? TextLayouts::inLines(text_, setting, std::nullopt) : TextLayout();
    if (!maximumWidth || unbroken_->width() <= *maximumWidth)
        return *unbroken_;
    if (!broken_ || brokenWidth_ != *maximumWidth)
        broken_ = TextLayouts::inLines(text_, setting, maximumWidth);
    brokenWidth_ = *maximumWidth;
    return *broken_;
}

const TextLayout& SetText::truncated(const TextSetting& setting, const Size& size) {
    const auto& whole = inLines(setting, std::nullopt);
    if (whole.width() <= size.width && whole.linesWithin(size.height) == whole.lines.size())
        return whole;
    if (!truncated_ || truncatedSize_ != size)
        truncated_ = TextLayouts::truncated(text_, setting, size.width, size.height);
    truncatedSize_ = size;
    return *truncated_;
}

} // namespace Ostrel
