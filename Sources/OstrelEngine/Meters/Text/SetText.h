#pragma once

#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Meters/Text/TextLayout.h"

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// A text and the ways in which it was set last, so that measuring it and drawing it set it once.
class SetText {
public:
    void setText(std::string_view text);
    /// Font, size or spacing are others.
    void forgetLayouts();
    bool hasLineBreak() const { return text_.find(u'\n') != std::u16string::npos; }

    // The layout lives until the next call. Without a font it is empty.

    /// Broken at the width only where it is wider.
    const TextLayout& inLines(const TextSetting& setting, std::optional<double> maximumWidth);
    const TextLayout& truncated(const TextSetting& setting, const Size& size);

private:
    std::u16string text_;
    std::optional<TextLayout> unbroken_;
    std::optional<TextLayout> broken_;
    double brokenWidth_ = 0;
    std::optional<TextLayout> truncated_;
    Size truncatedSize_;
};

} // namespace Ostrel
