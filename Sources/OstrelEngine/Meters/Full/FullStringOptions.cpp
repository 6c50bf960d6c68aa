#include "OstrelEngine/Meters/Full/FullStringOptions.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Meters/Painting.h"
#include "OstrelEngine/Meters/TextFormatter.h"

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

constexpr double DefaultPoints = 10;
constexpr std::string_view DefaultFamily = "Arial";

std::string_view textOf(const Options& options, const CaseKey& key) {
    return trimmed(OptionValues::unquoted(option(options, key).value_or("")));
}

/// Blanks at its ends, which only quotes can have kept, stay.
std::string brokenText(const Options& options, const CaseKey& key) {
    return replacingOccurrences(OptionValues::unquoted(option(options, key).value_or("")), "#CRLF#", "\n");
}

Color colorOf(const Options& options, const CaseKey& key) {
    const auto bytes = OptionValues::color(textOf(options, key)).value_or(OptionValues::ColorBytes{0, 0, 0, 255});
    return {bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0, bytes[3] / 255.0};
}

FontLookup::FamilyRequest familyOf(const Options& options) {
    FontLookup::FamilyRequest family;
    const auto face = trimmed(textOf(options, "FontFace"_key));
    family.name = face.empty() ? DefaultFamily : face;
    if (const auto weight = OptionValues::integer(textOf(options, "FontWeight"_key)); weight && *weight >= 1)
        family.weight = std::min(*weight, 999);
    const auto style = upperCased(textOf(options, "StringStyle"_key));
    family.isBold = style.find("BOLD") != std::string::npos;
    family.isItalic = style.find("ITALIC") != std::string::npos;
    return family;
}

/// A word for each direction, the horizontal one first and either absent.
void parseAlignment(std::string_view text, StyledLook& look) {
    auto words = replacingOccurrences(replacingOccurrences(upperCased(text), " ", ""), "CENTRE", "CENTER");
    std::string_view rest = words;
    const auto take = [&](std::string_view word) {
        const bool found = rest.starts_with(word);
        rest.remove_prefix(found ? word.size() : 0);
        return found;
    };
    if (take("RIGHT"))
        look.alignment = HorizontalAlignment::right;
    else if (take("CENTER"))
        look.alignment = HorizontalAlignment::center;
    else
        take("LEFT");
    if (take("BOTTOM"))
        look.verticalAlignment = VerticalAlignment::bottom;
    else if (take("CENTER"))
        look.verticalAlignment = VerticalAlignment::center;
}

StyledLook lookOf(const Options& options) {
    StyledLook look;
    parseAlignment(textOf(options, "StringAlign"_key), look);
    look.antiAlias = OptionValues::isOn(textOf(options, "AntiAlias"_key)).value_or(true);
    const auto effect = textOf(options, "StringEffect"_key);
    if (equalsIgnoringCase(effect, "Shadow"))
        look.effect = StyledLook::Effect::Shadow;
    else if (equalsIgnoringCase(effect, "Border"))
        look.effect = StyledLook::Effect::Border;
    look.effectColor = colorOf(options, "FontEffectColor"_key);
    return look;
}

std::optional<double> limitOf(const Options& options, const CaseKey& key) {
    const auto number = OptionValues::number(textOf(options, key));
    return number && *number > 0 ? std::optional(boundedCoordinate(*number)) : std::nullopt;
}

} // namespace

FullStringOptions FullStringOptions::parse(const Options& options, const FullStringOptions& previous) {
    FullStringOptions result;
    result.keepsBlanks = OptionValues::isOn(textOf(options, "TrailingSpaces"_key)).value_or(false);
    const auto text = brokenText(options, "Text"_key);
    if (!text.empty())
        result.text = result.keepsBlanks ? text : std::string(trimmedWhitespace(text));
    result.prefix = brokenText(options, "Prefix"_key);
    result.postfix = brokenText(options, "Postfix"_key);
    result.numbers = NumberFormat::parse(options);
    result.stringCase = textOf(options, "StringCase"_key);
    result.style.family = familyOf(options);
    const double points = OptionValues::number(textOf(options, "FontSize"_key)).value_or(0);
    result.style.size = boundedCoordinate(points > 0 ? points : DefaultPoints) * PixelsPerPoint;
    result.style.color = colorOf(options, "FontColor"_key);
    result.look = lookOf(options);
    result.angle = boundedCoordinate(OptionValues::number(textOf(options, "Angle"_key)).value_or(0));
    result.clip = std::clamp(OptionValues::integer(textOf(options, "ClipString"_key)).value_or(0), 0, 2);
    result.look.cutsWideLines = result.clip != 0;
    result.largestWidth = limitOf(options, "ClipStringW"_key);
    result.largestHeight = limitOf(options, "ClipStringH"_key);
    result.inlineSettings = InlineSettings::parse(options, previous.inlineSettings);
    return result;
}

StyledLayouts::Room FullStringOptions::room(std::optional<double> width, std::optional<double> height) const {
    using Breaking = StyledLayouts::Room::Breaking;
    StyledLayouts::Room room;
    room.keepsBlanks = keepsBlanks;
    // A side of 0 is none to set a text in.
    if (width && *width <= 0)
        width.reset();
    if (height && *height <= 0)
        height.reset();
    if (clip == 1 && width) {
        room.width = width;
        room.height = height;
        room.breaking = Breaking::Words;
        if (!height)
            room.lines = 1;
    } else if (clip == 2) {
        room.width = width ? width : largestWidth;
        room.height = height ? height : largestHeight;
        room.breaking = room.width ? Breaking::Blanks : Breaking::Never;
    }
    return room;
}

std::string FullStringOptions::formattedText(MeasureValues values) const {
    const std::string_view own = text ? std::string_view(*text) : values.empty() ? "" : "%1";
    auto result = replacingPlaces(prefix, values, numbers) + replacingPlaces(own, values, numbers)
        + replacingPlaces(postfix, values, numbers);
    return stringCase.empty() ? result : TextFormatter::applyCase(result, stringCase);
}

} // namespace Ostrel
