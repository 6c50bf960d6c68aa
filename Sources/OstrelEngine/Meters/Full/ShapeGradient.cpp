#include "OstrelEngine/Meters/Full/ShapeGradient.h"

#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QLinearGradient>
#include <QRadialGradient>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace Ostrel {

namespace {

constexpr std::size_t MostColors = 256;
/// Straight pieces between two colors that are mixed by light.
constexpr int PiecesOfLight = 16;
/// Two colors at one place are an edge; the toolkit would keep the later one only.
constexpr double EdgeWidth = 1e-6;

/// Red, green, blue, opacity, 0 to 1.
using Channels = std::array<double, 4>;

struct Stop {
    double place = 0;
    Channels color;
};

// The transfer function of sRGB (IEC 61966-2-1).
double lightOf(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double valueOf(double light) {
    return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

Channels mixed(const Channels& a, const Channels& b, double share, bool mixesLight) {
    Channels result;
    for (std::size_t i = 0; i < result.size(); ++i) {
        const bool isLight = mixesLight && i < 3;
        const double from = isLight ? lightOf(a[i]) : a[i];
        const double to = isLight ? lightOf(b[i]) : b[i];
        const double value = from + (to - from) * share;
        result[i] = std::clamp(isLight ? valueOf(value) : value, 0.0, 1.0);
    }
    return result;
}

std::vector<Stop> parseStops(const std::vector<std::string_view>& items) {
    std::vector<Stop> stops;
    for (std::size_t i = 1; i < items.size() && stops.size() < MostColors; ++i) {
        const auto parts = OptionValues::split(items[i], ';');
        const auto color = parts.empty() ? std::nullopt : OptionValues::color(parts[0]);
        const auto place = parts.size() < 2 ? std::nullopt : OptionValues::number(parts[1]);
        if (!color || !place)
            continue;
        Stop stop{boundedCoordinate(*place), {}};
        std::ranges::transform(*color, stop.color.begin(), [](auto byte) { return byte / 255.0; });
        stops.push_back(stop);
    }
    std::ranges::stable_sort(stops, {}, &Stop::place);
    return stops;
}

/// What of the colors is between 0 and 1; those outside still bend the mixing.
std::vector<Stop> cutToShown(const std::vector<Stop>& stops, bool mixesLight) {
    std::vector<Stop> shown;
    for (std::size_t i = 0; i < stops.size(); ++i) {
        const Stop& stop = stops[i];
        if (i > 0) {
            const Stop& before = stops[i - 1];
            for (const double edge : {0.0, 1.0})
                if (before.place < edge && stop.place > edge)
                    shown.push_back({edge,
                        mixed(before.color, stop.color, (edge - before.place) / (stop.place - before.place),
                            mixesLight)});
        }
        if (stop.place >= 0 && stop.place <= 1)
            shown.push_back(stop);
    }
    if (shown.empty())
        shown.push_back({0, stops.front().place > 1 ? stops.front().color : stops.back().color});
    return shown;
}

QGradientStops toolkitStops(const std::vector<Stop>& stops, bool mixesLight) {
    QGradientStops result;
    double least = 0;
    const auto add = [&](double place, const Channels& color) {
        const double at = std::clamp(place, least, 1.0);
        result.append({at, toQColor(Color{color[0], color[1], color[2], color[3]})});
        least = std::min(1.0, at + EdgeWidth);
    };
    for (std::size_t i = 0; i < stops.size(); ++i) {
        if (i > 0 && mixesLight && stops[i].place - stops[i - 1].place > 0.01)
            for (int piece = 1; piece < PiecesOfLight; ++piece) {
                const double share = static_cast<double>(piece) / PiecesOfLight;
                add(stops[i - 1].place + (stops[i].place - stops[i - 1].place) * share,
                    mixed(stops[i - 1].color, stops[i].color, share, true));
            }
        // Of several colors at the very end the last one would replace the others.
        const bool opensEdge = i + 1 < stops.size() && stops[i].place >= 1 && stops[i + 1].place >= 1;
        add(opensEdge ? 1 - EdgeWidth * static_cast<double>(stops.size() - i) : stops[i].place, stops[i].color);
    }
    return result;
}

QBrush finished(QGradient& gradient, const QGradientStops& stops, const QTransform& transform) {
    gradient.setStops(stops);
    gradient.setInterpolationMode(QGradient::ComponentInterpolation);
    QBrush brush(gradient);
    brush.setTransform(transform);
    return brush;
}

} // namespace

std::optional<ShapeGradient> ShapeGradient::parse(std::string_view text, bool isRadial, bool mixesLight) {
    const auto items = OptionValues::split(text, '|');
    const auto stops = parseStops(items);
    if (stops.empty())
        return std::nullopt;
    ShapeGradient gradient;
    gradient.isRadial = isRadial;
    gradient.stops = toolkitStops(cutToShown(stops, mixesLight), mixesLight);
    const auto numbers = OptionValues::numbers(items[0], ',');
    const auto at = [&](std::size_t i) -> std::optional<double> {
        return i < numbers.size() && numbers[i] ? std::optional(boundedCoordinate(*numbers[i])) : std::nullopt;
    };
    if (!isRadial) {
        gradient.angle = at(0).value_or(0);
        return gradient;
    }
    gradient.centerX = at(0).value_or(0);
    gradient.centerY = at(1).value_or(0);
    gradient.focusX = at(2).value_or(0);
    gradient.focusY = at(3).value_or(0);
    gradient.radiusX = at(4);
    gradient.radiusY = at(5);
    return gradient;
}

QBrush ShapeGradient::brush(const QRectF& box, const QTransform& transform) const {
    if (stops.size() == 1)
        return stops.front().second;
    if (!isRadial) {
        const double radians = angle * std::numbers::pi / 180;
        const double half
            = std::abs(box.width() / 2 * std::cos(radians)) + std::abs(box.height() / 2 * std::sin(radians));
        const QPointF toStart(std::cos(radians) * half, std::sin(radians) * half);
        QLinearGradient gradient(box.center() + toStart, box.center() - toStart);
        return finished(gradient, stops, transform);
    }
    const double rx = std::abs(radiusX.value_or(box.width() / 2));
    const double ry = std::abs(radiusY.value_or(box.height() / 2));
    if (!(rx > 0) || !(ry > 0))
        return stops.back().second;
    // A circle of radius 1 that the brush stretches; a focus outside of it would draw a cone.
    QPointF focus(focusX / rx, focusY / ry);
    if (const double distance = std::hypot(focus.x(), focus.y()); distance > 0.99)
        focus *= 0.99 / distance;
    QRadialGradient gradient(QPointF(0, 0), 1, focus);
    const QPointF center = box.center() + QPointF(centerX, centerY);
    return finished(
        gradient, stops, QTransform::fromScale(rx, ry) * QTransform::fromTranslate(center.x(), center.y()) * transform);
}

} // namespace Ostrel
