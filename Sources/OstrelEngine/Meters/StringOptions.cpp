#include "OstrelEngine/Meters/StringOptions.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/PositionParser.h"
#include "OstrelEngine/Meters/ColorParser.h"
#include "OstrelEngine/Meters/Painting.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <vector>

namespace Ostrel {

namespace {

constexpr Color White{1, 1, 1, 1};
constexpr Color Black{0, 0, 0, 1};
constexpr Color HalfBlack{0, 0, 0, 0.5};
constexpr double DefaultFontSize = 12;
/// What skins call a unit of spacing, in points.
constexpr double PointsOfSpacing = 1.3333333333333333;

/// "InlineSetting" is the first, "InlineSetting2" the second.
std::optional<std::string_view> numberedOption(const Options& options, std::string_view key, int number) {
    std::string numbered(key);
    if (number > 1) {
        std::array<char, 16> digits;
        numbered.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
    }
    const auto* value = options.find(numbered);
    return value ? std::optional<std::string_view>(*value) : std::nullopt;
}

std::vector<std::string_view> trimmedParts(std::string_view setting) {
    auto parts = split(setting, '|');
    for (auto& part : parts)
        part = trimmed(part);
    return parts;
}

/// Calls `use` with each setting and its number; a gap in the numbers ends the walk.
template <typename Use> void forEachInlineSetting(const Options& options, Use use) {
    for (int number = 1;; ++number) {
        const auto setting = trimmed(numberedOption(options, "InlineSetting", number).value_or(""));
        if (setting.empty())
            return;
        use(setting, number);
    }
}

/// Settings that style the whole text, whatever their pattern.
struct InlineStyling {
    std::optional<Color> color;
    bool isUnderlined = false;
    std::optional<TextShadow> shadow;
    std::optional<std::string> stringCase;
};

double numberOrOne(const std::vector<std::string_view>& parts, std::size_t position) {
    const auto number = position < parts.size() ? parseDouble(parts[position]) : std::nullopt;
    return boundedCoordinate(number.value_or(1));
}

TextShadow inlineShadow(const std::vector<std::string_view>& parts) {
    TextShadow shadow;
    shadow.offsetX = numberOrOne(parts, 1);
    shadow.offsetY = numberOrOne(parts, 2);
    shadow.blurRadius = std::max(0.0, numberOrOne(parts, 3));
    shadow.color = ColorParser::parse(parts.size() > 4 ? std::optional(parts[4]) : std::nullopt, HalfBlack);
    return shadow;
}

InlineStyling parseInlineStyling(const Options& options) {
    InlineStyling styling;
    forEachInlineSetting(options, [&](std::string_view setting, int) {
        const auto parts = trimmedParts(setting);
        if (equalsIgnoringCase(parts[0], "COLOR")) {
            if (parts.size() > 1)
                styling.color = ColorParser::parse(parts[1]);
        } else if (equalsIgnoringCase(parts[0], "UNDERLINE")) {
            styling.isUnderlined = true;
        } else if (equalsIgnoringCase(parts[0], "SHADOW")) {
            styling.shadow = inlineShadow(parts);
        } else if (equalsIgnoringCase(parts[0], "CASE") && parts.size() > 1) {
            styling.stringCase = parts[1];
        }
    });
    return styling;
}

/// Absent when the text is not valid; an empty text and "*" are valid and stand for 0.
std::optional<double> spacingComponent(std::string_view text) {
    return text.empty() || text == "*" ? 0 : parseDouble(text);
}

double inlineKerning(const Options& options) {
    double kerning = 0;
    forEachInlineSetting(options, [&](std::string_view setting, int number) {
        const auto pattern = trimmed(numberedOption(options, "InlinePattern", number).value_or(""));
        if (!pattern.empty() && pattern != ".*")
            return;
        if (const auto found = StringOptionParsers::characterSpacingKerning(setting))
            kerning = *found;
    });
    return boundedCoordinate(kerning);
}

FontLookup::Weight weightOfNumber(double value) {
    if (std::isnan(value))
        return 900;
    for (const FontLookup::Weight weight : {100, 200, 300, 400, 500, 600, 700, 800}) {
        if (value < weight + 50)
            return weight;
    }
    return 900;
}

std::optional<FontLookup::Weight> weightOfWords(std::string_view upper) {
    const auto has = [&](std::string_view word) { return upper.find(word) != std::string_view::npos; };
    if (has("THIN"))
        return 200;
    if (has("LIGHT"))
        return has("ULTRA") ? 100 : 300;
    if (has("MEDIUM"))
        return 500;
    if (has("SEMIBOLD") || has("DEMIBOLD"))
        return 600;
    if (has("BOLD"))
        return 700;
    if (has("BLACK"))
        return 900;
    if (has("HEAVY"))
        return 800;
    return std::nullopt;
}

void parseEffect(const Options& options, TextAppearance& look) {
    const auto effect = option(options, "StringEffect"_key).value_or("");
    const auto color = option(options, "FontEffectColor"_key);
    if (equalsIgnoringCase(effect, "SHADOW"))
        look.shadow = TextShadow{1, 1, 1, ColorParser::parse(color, HalfBlack)};
    else if (equalsIgnoringCase(effect, "BORDER"))
        look.outlineColor = ColorParser::parse(color, Black);
}

TextAppearance parseLook(const Options& options, const InlineStyling& styling) {
    TextAppearance look;
    look.color = styling.color.value_or(ColorParser::parse(option(options, "FontColor"_key), White));
    look.isUnderlined = styling.isUnderlined;
    look.antiAlias = option(options, "AntiAlias"_key) != "0";
    look.alignment = StringOptionParsers::alignment(option(options, "StringAlign"_key));
    parseEffect(options, look);
    if (styling.shadow)
        look.shadow = styling.shadow;
    return look;
}

FontLookup::Request parseFont(const Options& options) {
    const auto style = upperCased(option(options, "StringStyle"_key).value_or(""));
    FontLookup::Request font;
    font.name = withoutDoubleQuotes(option(options, "FontFace"_key).value_or(""));
    font.weight = StringOptionParsers::fontWeight(option(options, "FontWeight"_key), style);
    font.isBold = style.find("BOLD") != std::string::npos;
    font.isItalic = style.find("ITALIC") != std::string::npos;
    return font;
}

double parseFontSize(const Options& options) {
    const double size = boundedCoordinate(PositionParser::parseDimension(option(options, "FontSize"_key)));
    return size > 0 ? size : DefaultFontSize;
}

/// StringCase, or else that of the inline settings.
std::optional<std::string> parseStringCase(const Options& options, const InlineStyling& styling) {
    const auto own = trimmed(option(options, "StringCase"_key).value_or(""));
    return own.empty() ? styling.stringCase : std::optional<std::string>(own);
}

} // namespace

StringOptions StringOptions::parse(const Options& options) {
    const auto styling = parseInlineStyling(options);
    StringOptions result;
    if (const auto text = option(options, "Text"_key))
        result.textTemplate = withoutDoubleQuotes(*text);
    result.numbers = TextFormatter::numberStyle(options);
    result.stringCase = parseStringCase(options, styling);
    result.font = parseFont(options);
    result.fontSize = parseFontSize(options);
    result.kerning = inlineKerning(options);
    result.look = parseLook(options, styling);
    result.solidColor = ColorParser::parse(option(options, "SolidColor"_key).value_or(""));
    result.clips = parseInteger(option(options, "ClipString"_key).value_or("")).value_or(0) != 0;
    result.width = PositionParser::parseDimension(option(options, "W"_key));
    result.height = PositionParser::parseDimension(option(options, "H"_key));
    return result;
}

namespace StringOptionParsers {

HorizontalAlignment alignment(std::optional<std::string_view> text) {
    const auto upper = upperCased(replacingOccurrences(text.value_or(""), " ", ""));
    if (upper.starts_with("RIGHT"))
        return HorizontalAlignment::right;
    if (upper.starts_with("CENTER") || upper.find("CENTERCENTER") != std::string::npos)
        return HorizontalAlignment::center;
    return HorizontalAlignment::left;
}

FontLookup::Weight fontWeight(std::optional<std::string_view> fontWeight, std::string_view stringStyle) {
    const auto upper = upperCased(withoutDoubleQuotes(fontWeight.value_or("")));
    if (const auto number = parseDouble(upper))
        return weightOfNumber(*number);
    if (const auto weight = weightOfWords(upper))
        return *weight;
    return weightOfWords(upperCased(stringStyle)).value_or(FontLookup::RegularWeight);
}

std::optional<double> characterSpacingKerning(std::string_view setting) {
    const auto parts = trimmedParts(setting);
    if (parts.size() < 2 || !equalsIgnoringCase(parts[0], "CHARACTERSPACING"))
        return std::nullopt;
    const auto before = spacingComponent(parts[1]);
    const auto after = spacingComponent(parts.size() > 2 ? parts[2] : std::string_view());
    if (!before || !after)
        return std::nullopt;
    const double kerning = (*before + *after) * PointsOfSpacing;
    return std::abs(kerning) > 0.0001 ? std::optional(kerning) : std::nullopt;
}

} // namespace StringOptionParsers

} // namespace Ostrel
