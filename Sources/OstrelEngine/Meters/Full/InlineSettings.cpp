#include "OstrelEngine/Meters/Full/InlineSettings.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Meters/Painting.h"
#include "OstrelEngine/Meters/Text/FontLibrary.h"
#include "OstrelEngine/Meters/Text/TextLayout.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace Ostrel {

namespace {

constexpr int MostSettings = 256;
constexpr std::size_t MostStops = 64;
/// What would need more styles stays as it is: a gradient for each of thousands of matches is nothing to be seen.
constexpr std::size_t MostStyles = 4096;
/// Nothing behind it is shown.
constexpr std::size_t LargestText = 1 << 16;

std::string_view numberedOption(const Options& options, std::string_view key, int number) {
    const auto* value = options.find(number > 1 ? std::string(key) + formatInteger(number) : std::string(key));
    return value ? trimmed(OptionValues::unquoted(trimmed(*value))) : std::string_view();
}

Color colorOf(const OptionValues::ColorBytes& bytes) {
    return {bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0, bytes[3] / 255.0};
}

std::optional<double> numberAt(const std::vector<std::string_view>& items, std::size_t i) {
    const auto number = i < items.size() ? OptionValues::number(items[i]) : std::nullopt;
    return number ? std::optional(boundedCoordinate(*number)) : std::nullopt;
}

std::optional<Color> colorAt(const std::vector<std::string_view>& items, std::size_t i) {
    const auto bytes = i < items.size() ? OptionValues::color(items[i]) : std::nullopt;
    return bytes ? std::optional(colorOf(*bytes)) : std::nullopt;
}

/// "angle | color ; position | color ; position ..."
std::shared_ptr<const TextGradient> gradientOf(const std::vector<std::string_view>& items, bool isLinear) {
    TextGradient gradient;
    gradient.angle = numberAt(items, 1).value_or(0);
    gradient.isLinear = isLinear;
    for (std::size_t i = 2; i < items.size() && gradient.stops.size() < MostStops; ++i) {
        const auto parts = OptionValues::split(items[i], ';');
        if (const auto color = colorAt(parts, 0))
            gradient.stops.push_back({numberAt(parts, 1).value_or(0), *color});
    }
    if (gradient.stops.size() < 2)
        return nullptr;
    std::ranges::stable_sort(gradient.stops, {}, &TextGradient::Stop::position);
    return std::make_shared<const TextGradient>(std::move(gradient));
}

/// The first letter of each sentence as a capital, all others small.
std::string sentences(std::string_view text) {
    const auto lower = lowerCased(text);
    std::string result;
    bool begins = true;
    for (std::size_t at = 0; at < lower.size();) {
        const auto c = decodeCharacter(lower, at);
        const auto letter = std::string_view(lower).substr(at, c.length);
        const bool isBlank = isWhitespace(c.value) || isNewline(c.value);
        result += begins && !isBlank ? upperCased(letter) : std::string(letter);
        if (c.value == '.' || c.value == '!' || c.value == '?')
            begins = true;
        else if (!isBlank && c.value != '"' && c.value != '\'')
            begins = false;
        at += c.length;
    }
    return result;
}

} // namespace

std::optional<InlineSettings::Change> InlineSettings::parseChange(std::string_view setting) {
    const auto items = OptionValues::split(setting, '|');
    const auto is = [&](std::string_view name) { return equalsIgnoringCase(items[0], name); };
    const auto item = [&](std::size_t i) { return i < items.size() ? items[i] : std::string_view(); };
    if (is("Color")) {
        const auto color = colorAt(items, 1);
        return color ? std::optional<Change>(ColorChange{*color}) : std::nullopt;
    }
    if (is("GradientColor") || is("GradientColor1")) {
        auto gradient = gradientOf(items, is("GradientColor1"));
        return gradient ? std::optional<Change>(std::move(gradient)) : std::nullopt;
    }
    if (is("Size")) {
        const auto points = numberAt(items, 1);
        return points && *points > 0 ? std::optional<Change>(SizeChange{*points * PixelsPerPoint}) : std::nullopt;
    }
    if (is("Shadow"))
        return TextShadow{numberAt(items, 1).value_or(1), numberAt(items, 2).value_or(1),
            std::max(0.0, numberAt(items, 3).value_or(1)), colorAt(items, 4).value_or(Color{0, 0, 0, 1})};
    if (is("CharacterSpacing"))
        return SpacingChange{numberAt(items, 1), numberAt(items, 2), numberAt(items, 3)};
    if (is("Face"))
        return item(1).empty() ? std::nullopt : std::optional<Change>(FaceChange{std::string(item(1))});
    if (is("Weight")) {
        const auto weight = numberAt(items, 1);
        return weight && *weight >= 1 ? std::optional<Change>(WeightChange{std::min(999, static_cast<int>(*weight))})
                                      : std::nullopt;
    }
    if (is("Stretch")) {
        const auto stretch = numberAt(items, 1);
        return stretch && *stretch >= 1 && *stretch < 10
            ? std::optional<Change>(StretchChange{static_cast<int>(*stretch)})
            : std::nullopt;
    }
    if (is("Typography")) {
        if (item(1).size() != 4 || !isASCII(item(1)))
            return std::nullopt;
        std::uint32_t tag = 0;
        for (const char c : item(1))
            tag = tag << 8 | static_cast<unsigned char>(c);
        const double index = std::clamp(numberAt(items, 2).value_or(1), 0.0, 1000.0);
        return TextFeature{tag, static_cast<std::uint32_t>(index)};
    }
    if (is("Italic") || is("Oblique"))
        return Switch::Italic;
    if (is("Underline"))
        return Switch::Underline;
    if (is("Strikethrough"))
        return Switch::Strikethrough;
    if (is("Case")) {
        constexpr std::pair<std::string_view, CaseChange> Cases[] = {{"Lower", CaseChange::Lower},
            {"Upper", CaseChange::Upper}, {"Proper", CaseChange::Proper}, {"Sentence", CaseChange::Sentence}};
        for (const auto& [name, change] : Cases)
            if (equalsIgnoringCase(item(1), name))
                return change;
    }
    return std::nullopt;
}

InlineSettings InlineSettings::parse(const Options& options, const InlineSettings& previous) {
    InlineSettings result;
    for (int number = 1; number <= MostSettings; ++number) {
        const auto setting = numberedOption(options, "InlineSetting", number);
        if (setting.empty())
            break;
        Written written{std::string(setting), std::string(numberedOption(options, "InlinePattern", number)), {}};
        const auto at = result.written_.size();
        const bool isWhole = written.pattern.empty() || written.pattern == ".*";
        if (at < previous.written_.size() && previous.written_[at].pattern == written.pattern)
            written.compiled = previous.written_[at].compiled;
        else if (!isWhole)
            if (auto compiled = PerlRegularExpression::compile(written.pattern))
                written.compiled = std::make_shared<const PerlRegularExpression>(std::move(*compiled));
        auto change = parseChange(setting);
        if (change && (isWhole || written.compiled))
            result.settings_.push_back({std::move(*change), written.compiled});
        result.written_.push_back(std::move(written));
    }
    return result;
}

std::vector<PerlRegularExpression::Span> InlineSettings::spans(const Setting& setting, std::string_view text) {
    if (!setting.pattern)
        return {{0, text.size()}};
    std::vector<PerlRegularExpression::Span> result;
    for (const auto& groups : setting.pattern->allMatches(text)) {
        // Where there are groups, only what they caught is styled.
        for (std::size_t i = groups.size() > 1 ? 1 : 0; i < groups.size(); ++i) {
            if (groups[i] && groups[i]->begin < groups[i]->end)
                result.push_back(*groups[i]);
        }
    }
    return result;
}

std::string InlineSettings::withCases(std::string text) const {
    if (text.size() > LargestText)
        return text;
    for (const auto& setting : settings_) {
        const auto* change = std::get_if<CaseChange>(&setting.change);
        if (!change)
            continue;
        std::string result;
        std::size_t copied = 0;
        for (const auto& span : spans(setting, text)) {
            // Groups within groups.
            if (span.begin < copied)
                continue;
            result.append(text, copied, span.begin - copied);
            const auto part = std::string_view(text).substr(span.begin, span.end - span.begin);
            switch (*change) {
            case CaseChange::Lower:
                result += lowerCased(part);
                break;
            case CaseChange::Upper:
                result += upperCased(part);
                break;
            case CaseChange::Proper:
                result += capitalizedWords(part);
                break;
            case CaseChange::Sentence:
                result += sentences(part);
                break;
            }
            copied = span.end;
        }
        result.append(text, copied);
        text = std::move(result);
    }
    return text;
}

void InlineSettings::apply(const Change& change, TextStyle& style) {
    if (const auto* color = std::get_if<ColorChange>(&change)) {
        style.color = color->color;
        style.gradient = nullptr;
    } else if (const auto* gradient = std::get_if<std::shared_ptr<const TextGradient>>(&change)) {
        style.gradient = *gradient;
    } else if (const auto* size = std::get_if<SizeChange>(&change)) {
        style.size = size->size;
    } else if (const auto* shadow = std::get_if<TextShadow>(&change)) {
        style.shadow = *shadow;
    } else if (const auto* spacing = std::get_if<SpacingChange>(&change)) {
        style.leading = spacing->leading.value_or(style.leading);
        style.trailing = spacing->trailing.value_or(style.trailing);
        style.leastAdvance = spacing->leastAdvance.value_or(style.leastAdvance);
    } else if (const auto* face = std::get_if<FaceChange>(&change)) {
        style.family.name = face->family;
    } else if (const auto* weight = std::get_if<WeightChange>(&change)) {
        style.family.weight = weight->weight;
    } else if (const auto* stretch = std::get_if<StretchChange>(&change)) {
        style.family.stretch = stretch->stretch;
    } else if (const auto* feature = std::get_if<TextFeature>(&change)) {
        style.features.push_back(*feature);
    } else if (const auto* which = std::get_if<Switch>(&change)) {
        style.family.isItalic = style.family.isItalic || *which == Switch::Italic;
        style.isUnderlined = style.isUnderlined || *which == Switch::Underline;
        style.isStruckThrough = style.isStruckThrough || *which == Switch::Strikethrough;
    }
}

StyledText InlineSettings::styled(std::string_view text, const TextStyle& base) const {
    text = text.substr(0, LargestText);
    StyledText result;
    result.styles.push_back(base);
    std::vector<std::uint32_t> unitOfByte;
    result.text = TextLayouts::preparedText(text, settings_.empty() ? nullptr : &unitOfByte);
    std::vector<std::uint32_t> styleOf(settings_.empty() ? 0 : result.text.size(), 0);
    std::uint32_t gradientSpan = 0;
    for (const auto& setting : settings_) {
        if (result.styles.size() >= MostStyles)
            break;
        if (std::holds_alternative<CaseChange>(setting.change))
            continue;
        const bool isGradient = std::holds_alternative<std::shared_ptr<const TextGradient>>(setting.change);
        // What became of each style. Each match of a gradient has a box of its own.
        std::map<std::uint32_t, std::uint32_t> changed;
        for (const auto& span : spans(setting, text)) {
            if (isGradient) {
                changed.clear();
                ++gradientSpan;
            }
            if (result.styles.size() >= MostStyles)
                break;
            for (auto unit = unitOfByte[span.begin]; unit < unitOfByte[span.end]; ++unit) {
                const auto [known, isNew]
                    = changed.try_emplace(styleOf[unit], static_cast<std::uint32_t>(result.styles.size()));
                if (isNew) {
                    auto style = result.styles[styleOf[unit]];
                    apply(setting.change, style);
                    if (isGradient)
                        style.gradientSpan = gradientSpan;
                    result.styles.push_back(std::move(style));
                }
                styleOf[unit] = known->second;
            }
        }
    }
    for (std::size_t unit = 1; unit < styleOf.size(); ++unit) {
        if (styleOf[unit] != styleOf[unit - 1])
            result.stretches.push_back({unit, styleOf[unit - 1]});
    }
    result.stretches.push_back({result.text.size(), styleOf.empty() ? 0 : styleOf.back()});
    for (auto& style : result.styles) {
        if (!style.typeface || style.family != base.family)
            style.typeface = FontLibrary::shared().familyTypeface(style.family);
    }
    return result;
}

} // namespace Ostrel
