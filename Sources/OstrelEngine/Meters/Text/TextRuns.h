#pragma once

#include "OstrelEngine/Meters/Text/FontLookup.h"
#include "OstrelEngine/Meters/Text/Typeface.h"

#include <hb.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The font of a text and what stands in where it lacks a character.
struct TextFont {
    FontLookup::Request request;
    std::shared_ptr<Typeface> typeface;
};

/// A stretch of text of one direction, script and face.
struct TextRun {
    std::size_t start = 0;
    std::size_t length = 0;
    bool isRightToLeft = false;
    hb_script_t script = HB_SCRIPT_COMMON;
    std::shared_ptr<Typeface> typeface;
};

enum class TextDirection { leftToRight, rightToLeft };

namespace TextRuns {

/// That of the first letter with a direction.
TextDirection baseDirection(std::u16string_view text);
/// The runs of one line from left to right as they are seen.
std::vector<TextRun> visualRuns(std::u16string_view text, const TextFont& font, TextDirection base);

} // namespace TextRuns

} // namespace Ostrel
