#include "OstrelEngine/Full/WindowSettings.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

namespace Ostrel {

namespace {

/// One direction of a place: "50%R@2".
struct Coordinate {
    double value = 0;
    bool isPercent = false;
    bool isFromEnd = false;
    std::optional<std::int64_t> screen;
};

std::optional<Coordinate> parseCoordinate(std::string_view text) {
    Coordinate result;
    text = trimmed(text);
    if (const auto at = text.rfind('@'); at != std::string_view::npos) {
        result.screen = parseInteger(trimmed(text.substr(at + 1)));
        text = trimmed(text.substr(0, at));
    }
    while (!text.empty()) {
        const char last = asciiUpper(text.back());
        if (last == '%')
            result.isPercent = true;
        else if (last == 'R' || last == 'B')
            result.isFromEnd = true;
        else
            break;
        text = trimmed(text.substr(0, text.size() - 1));
    }
    const auto number = OptionValues::number(text);
    if (!number)
        return std::nullopt;
    constexpr double Limit = 1e6;
    result.value = std::clamp(*number, -Limit, Limit);
    return result;
}

double offset(const Coordinate& coordinate, double length) {
    const double value = coordinate.isPercent ? length * coordinate.value / 100 : coordinate.value;
    return coordinate.isFromEnd ? length - value : value;
}

double anchorOffset(std::string_view text, double length) {
    const auto anchor = parseCoordinate(text);
    return anchor ? offset(*anchor, length) : 0;
}

ScreenArea allScreens(const SkinPlace& place) {
    ScreenArea all = place.screens.front().whole;
    for (const auto& [area, work] : place.screens) {
        const int right = std::max(all.x + all.width, area.x + area.width);
        const int bottom = std::max(all.y + all.height, area.y + area.height);
        all.x = std::min(all.x, area.x);
        all.y = std::min(all.y, area.y);
        all.width = right - all.x;
        all.height = bottom - all.y;
    }
    return all;
}

ScreenArea screenArea(const SkinPlace& place, std::optional<std::int64_t> number) {
    if (place.screens.empty())
        return {};
    if (number && *number == 0)
        return allScreens(place);
    const auto count = static_cast<std::int64_t>(place.screens.size());
    const bool isKnown = number && *number > 0 && *number <= count;
    return place
        .screens[isKnown ? static_cast<std::size_t>(*number - 1) : std::min(place.primary, place.screens.size() - 1)]
        .whole;
}

bool isOn(const Options& options, const CaseKey& key, bool otherwise) {
    return OptionValues::isOn(option(options, key).value_or("")).value_or(otherwise);
}

} // namespace

WindowSettings firstWindowSettings(const Options& options) {
    const auto text = [&](const CaseKey& key) { return option(options, key).value_or(""); };
    WindowSettings settings;
    settings.isShown = !isOn(options, "DefaultStartHidden"_key, false);
    settings.isDraggable = isOn(options, "DefaultDraggable"_key, true);
    settings.snapsToEdges = isOn(options, "DefaultSnapEdges"_key, true);
    settings.keepsOnScreen = isOn(options, "DefaultKeepOnScreen"_key, true);
    settings.isClickThrough = isOn(options, "DefaultClickThrough"_key, false);
    settings.autoSelectsScreen = isOn(options, "DefaultAutoSelectScreen"_key, false);
    settings.alpha = std::clamp(OptionValues::integer(text("DefaultAlphaValue"_key)).value_or(settings.alpha), 0, 255);
    settings.fadeMilliseconds
        = std::max(0, OptionValues::integer(text("DefaultFadeDuration"_key)).value_or(settings.fadeMilliseconds));
    settings.zPosition = std::clamp(OptionValues::integer(text("DefaultAlwaysOnTop"_key)).value_or(0), -2, 2);
    settings.anchorX = text("DefaultAnchorX"_key);
    settings.anchorY = text("DefaultAnchorY"_key);
    return settings;
}

std::optional<ScreenPoint> firstWindowPosition(const Options& options, const SkinPlace& place, Size window) {
    const auto x = option(options, "DefaultWindowX"_key);
    const auto y = option(options, "DefaultWindowY"_key);
    if (!x && !y)
        return std::nullopt;
    return windowPosition(x.value_or(""), y.value_or(""), firstWindowSettings(options), place, window);
}

ScreenPoint windowPosition(
    std::string_view x, std::string_view y, const WindowSettings& settings, const SkinPlace& place, Size window) {
    const auto horizontal = parseCoordinate(x);
    const auto vertical = parseCoordinate(y);
    auto number = horizontal ? horizontal->screen : std::nullopt;
    if (!number && vertical)
        number = vertical->screen;
    const auto screen = screenArea(place, number);
    const auto whole = [](double value) { return static_cast<int>(std::lround(value)); };
    ScreenPoint result{place.x, place.y};
    if (horizontal)
        result.x = whole(screen.x + offset(*horizontal, screen.width) - anchorOffset(settings.anchorX, window.width));
    if (vertical)
        result.y = whole(screen.y + offset(*vertical, screen.height) - anchorOffset(settings.anchorY, window.height));
    return result;
}

} // namespace Ostrel
