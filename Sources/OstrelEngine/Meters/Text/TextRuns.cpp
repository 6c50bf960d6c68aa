#include "OstrelEngine/Meters/Text/TextRuns.h"

#include "OstrelEngine/Meters/Text/FontLibrary.h"

#include <unicode/ubidi.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <optional>
#include <string>

namespace Ostrel::TextRuns {

namespace {

constexpr char32_t FirstComplexCharacter = 0x590;
constexpr char32_t ZeroWidthJoiner = 0x200D;
constexpr char32_t TextPresentation = 0xFE0E;
constexpr char32_t EmojiPresentation = 0xFE0F;

struct Character {
    char32_t value = 0;
    std::size_t length = 1;
};

Character characterAt(std::u16string_view text, std::size_t at) {
    const char16_t unit = text[at];
    if (U16_IS_LEAD(unit) && at + 1 < text.size() && U16_IS_TRAIL(text[at + 1]))
        return {static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, text[at + 1])), 2};
    return {unit, 1};
}

hb_script_t scriptOf(char32_t c) {
    if (c < 0x80) {
        const bool isLetter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        return isLetter ? HB_SCRIPT_LATIN : HB_SCRIPT_COMMON;
    }
    return hb_unicode_script(hb_unicode_funcs_get_default(), c);
}

bool isReal(hb_script_t script) {
    return script != HB_SCRIPT_COMMON && script != HB_SCRIPT_INHERITED && script != HB_SCRIPT_UNKNOWN;
}

/// The one script of a text whose letters all run to the right and stand in the font; absent when it needs more care.
std::optional<hb_script_t> simpleScript(std::u16string_view text, const Typeface& typeface) {
    hb_script_t script = HB_SCRIPT_COMMON;
    for (const char16_t c : text) {
        if (c >= FirstComplexCharacter || !typeface.covers(c))
            return std::nullopt;
        const auto own = scriptOf(c);
        if (!isReal(own))
            continue;
        if (isReal(script) && script != own)
            return std::nullopt;
        script = own;
    }
    return script;
}

/// Characters that show in combination only and say nothing about the font they need.
bool isInvisible(char32_t c) {
    return c == ZeroWidthJoiner || c == TextPresentation || c == EmojiPresentation
        || u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
}

bool joinsCharacterBefore(char32_t c) {
    const auto property = static_cast<UGraphemeClusterBreak>(
        u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_GRAPHEME_CLUSTER_BREAK));
    return property == U_GCB_EXTEND || property == U_GCB_SPACING_MARK || property == U_GCB_ZWJ;
}

bool isRegionalIndicator(char32_t c) {
    return c >= 0x1F1E6 && c <= 0x1F1FF;
}

/// A base character with what combines with it; emoji joined into one picture are one.
struct Cluster {
    std::u32string characters;
    std::size_t length = 0;
    bool isEmoji = false;
};

Cluster clusterAt(std::u16string_view text, std::size_t start) {
    Cluster cluster;
    const auto first = characterAt(text, start);
    cluster.isEmoji = u_hasBinaryProperty(static_cast<UChar32>(first.value), UCHAR_EMOJI_PRESENTATION);
    char32_t previous = 0;
    for (std::size_t at = start; at < text.size(); at = start + cluster.length) {
        const auto c = characterAt(text, at);
        const bool isPair = cluster.length == 2 && isRegionalIndicator(first.value) && isRegionalIndicator(c.value);
        if (cluster.length > 0 && !joinsCharacterBefore(c.value) && previous != ZeroWidthJoiner && !isPair)
            break;
        cluster.isEmoji = (cluster.isEmoji || c.value == EmojiPresentation) && c.value != TextPresentation;
        if (!isInvisible(c.value))
            cluster.characters.push_back(c.value);
        cluster.length += c.length;
        previous = c.value;
    }
    return cluster;
}

std::shared_ptr<Typeface> typefaceFor(const Cluster& cluster, const TextFont& font) {
    const auto covered = [&](char32_t c) { return font.typeface->covers(c); };
    if (!cluster.isEmoji && std::all_of(cluster.characters.begin(), cluster.characters.end(), covered))
        return font.typeface;
    auto found = FontLibrary::shared().fallback(cluster.characters, font.request, cluster.isEmoji);
    return found ? found : font.typeface;
}

/// The runs of a stretch of one direction, in the order of the text.
std::vector<TextRun> logicalRuns(
    std::u16string_view text, std::size_t start, std::size_t end, const TextFont& font, bool isRightToLeft) {
    std::vector<TextRun> runs;
    while (start < end) {
        const auto cluster = clusterAt(text.substr(0, end), start);
        auto typeface = typefaceFor(cluster, font);
        const auto script = cluster.characters.empty() ? HB_SCRIPT_COMMON : scriptOf(cluster.characters.front());
        const bool sameScript
            = !runs.empty() && (!isReal(script) || !isReal(runs.back().script) || runs.back().script == script);
        if (sameScript && runs.back().typeface == typeface) {
            runs.back().length += cluster.length;
            if (isReal(script))
                runs.back().script = script;
        } else {
            runs.push_back({start, cluster.length, isRightToLeft, script, std::move(typeface)});
        }
        start += cluster.length;
    }
    return runs;
}

using Bidi = std::unique_ptr<UBiDi, decltype(&ubidi_close)>;

} // namespace

TextDirection baseDirection(std::u16string_view text) {
    const auto direction = ubidi_getBaseDirection(text.data(), static_cast<int32_t>(text.size()));
    return direction == UBIDI_RTL ? TextDirection::rightToLeft : TextDirection::leftToRight;
}

std::vector<TextRun> visualRuns(std::u16string_view text, const TextFont& font, TextDirection base) {
    if (const auto script = simpleScript(text, *font.typeface); script && base == TextDirection::leftToRight)
        return {{0, text.size(), false, *script, font.typeface}};
    std::vector<TextRun> runs;
    const Bidi bidi(ubidi_open(), &ubidi_close);
    UErrorCode error = U_ZERO_ERROR;
    const UBiDiLevel level = base == TextDirection::rightToLeft ? 1 : 0;
    ubidi_setPara(bidi.get(), text.data(), static_cast<int32_t>(text.size()), level, nullptr, &error);
    const int32_t count = ubidi_countRuns(bidi.get(), &error);
    if (U_FAILURE(error))
        return logicalRuns(text, 0, text.size(), font, false);
    for (int32_t i = 0; i < count; ++i) {
        int32_t start = 0;
        int32_t length = 0;
        const bool isRightToLeft = ubidi_getVisualRun(bidi.get(), i, &start, &length) == UBIDI_RTL;
        auto pieces = logicalRuns(
            text, static_cast<std::size_t>(start), static_cast<std::size_t>(start + length), font, isRightToLeft);
        if (isRightToLeft)
            std::reverse(pieces.begin(), pieces.end());
        runs.insert(runs.end(), std::make_move_iterator(pieces.begin()), std::make_move_iterator(pieces.end()));
    }
    return runs;
}

} // namespace Ostrel::TextRuns
