#include "OstrelEngine/Meters/Text/StyledPainter.h"

#include "OstrelEngine/Meters/DeviceSpace.h"
#include "OstrelEngine/Meters/Painting.h"
#include "OstrelEngine/Meters/Text/LineComposer.h"

#include <QLinearGradient>
#include <QPaintDevice>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace Ostrel::StyledPainter {

namespace {

/// Steps between two stops that stand for a mixture in linear light.
constexpr int LinearSteps = 8;
constexpr std::array<QPoint, 8> Neighbours = {{{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}}};

double toLinear(double channel) {
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double fromLinear(double light) {
    return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

Color mixedInLight(const Color& a, const Color& b, double part) {
    const auto mix = [&](double from, double to) {
        return std::clamp(fromLinear(toLinear(from) * (1 - part) + toLinear(to) * part), 0.0, 1.0);
    };
    return {mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue), a.alpha * (1 - part) + b.alpha * part};
}

QLinearGradient brushOf(const TextGradient& gradient, const QRectF& box) {
    const double angle = gradient.angle * std::numbers::pi / 180;
    const double half = std::abs(box.width() / 2 * std::cos(angle)) + std::abs(box.height() / 2 * std::sin(angle));
    const QPointF way(std::cos(angle) * half, std::sin(angle) * half);
    QLinearGradient brush(box.center() + way, box.center() - way);
    brush.setInterpolationMode(QGradient::ComponentInterpolation);
    const auto at = [](double position) { return std::clamp(position, 0.0, 1.0); };
    for (std::size_t i = 0; i < gradient.stops.size(); ++i) {
        const auto& stop = gradient.stops[i];
        for (int step = 1; gradient.isLinear && i > 0 && step < LinearSteps; ++step) {
            const auto& before = gradient.stops[i - 1];
            const double part = static_cast<double>(step) / LinearSteps;
            brush.setColorAt(at(before.position + (stop.position - before.position) * part),
                toQColor(mixedInLight(before.color, stop.color, part)));
        }
        brush.setColorAt(at(stop.position), toQColor(stop.color));
    }
    return brush;
}

/// A line at its place, in units of the painter.
struct PlacedLine {
    const StyledLine& line;
    double left = 0;
    double top = 0;

    double baseline() const { return top + line.ascent; }
};

template <typename Use>
void forEachLine(const StyledLayout& layout, const Rect& rect, const StyledLook& look, Use use) {
    double top = rect.y;
    if (look.verticalAlignment == VerticalAlignment::center)
        top += (rect.height - layout.height) / 2;
    else if (look.verticalAlignment == VerticalAlignment::bottom)
        top += rect.height - layout.height;
    for (const auto& line : layout.lines) {
        double left = rect.x;
        if (look.alignment == HorizontalAlignment::center)
            left += (rect.width - line.width) / 2;
        else if (look.alignment == HorizontalAlignment::right)
            left += rect.width - line.width;
        use(PlacedLine{line, left, top});
        top += line.height();
    }
}

/// Where a gradient spans: all pieces of the line that share it, from ascent to descent.
QRectF gradientBox(const StyledText& text, const PlacedLine& placed, std::size_t piece) {
    const auto& pieces = placed.line.pieces;
    const auto& style = text.styles[pieces[piece].style];
    const auto shares = [&](std::size_t i) {
        const auto& other = text.styles[pieces[i].style];
        return other.gradient == style.gradient && other.gradientSpan == style.gradientSpan;
    };
    double left = pieces[piece].left;
    double right = pieces[piece].right;
    for (std::size_t i = piece; i > 0 && shares(i - 1); --i)
        left = pieces[i - 1].left;
    for (std::size_t i = piece; i + 1 < pieces.size() && shares(i + 1); ++i)
        right = pieces[i + 1].right;
    const auto& metrics = style.typeface->metrics();
    return QRectF(placed.left + left, placed.baseline() - metrics.ascent * style.size, right - left,
        (metrics.ascent + metrics.descent) * style.size);
}

class UprightPainter {
public:
    UprightPainter(QPainter& painter, const StyledText& text, const Rect& rect, const StyledLook& look)
        : painter_(painter)
        , device_(0, 0, painter.device()->width(), painter.device()->height())
        , space_(painter)
        , text_(text)
        , rect_(rect)
        , look_(look) { }

    void draw(const PlacedLine& placed) {
        const auto count = placed.line.pieces.size();
        if (look_.effect != StyledLook::Effect::None) {
            for (std::size_t i = 0; i < count; ++i)
                drawEffect(deviceLine(placed, i));
        }
        for (std::size_t i = 0; i < count; ++i) {
            const auto& style = text_.styles[placed.line.pieces[i].style];
            if (style.shadow)
                TextPainter::drawShadow(painter_, deviceLine(placed, i), *style.shadow, style.color);
        }
        for (std::size_t i = 0; i < count; ++i)
            drawPiece(placed, i);
    }

private:
    DeviceLine deviceLine(const PlacedLine& placed, std::size_t i) const {
        const auto& piece = placed.line.pieces[i];
        const auto& style = text_.styles[piece.style];
        const QPointF origin = space_.map(placed.left, placed.baseline());
        const double size = std::min(style.size * space_.scale(), TextPainter::LargestPixelSize);
        DeviceLine line{piece.line, origin.x(), static_cast<int>(std::lround(boundedCoordinate(origin.y()))), size,
            space_.scale(), look_.antiAlias, {}, device_};
        const auto& metrics = style.typeface->metrics();
        if (style.isUnderlined)
            line.underline = ruleOf(piece, line, metrics.underlineOffset, metrics.underlineThickness);
        if (style.isStruckThrough)
            line.strike = ruleOf(piece, line, -metrics.strikeOffset, metrics.strikeThickness);
        if (look_.cutsWideLines && placed.line.width > rect_.width)
            line.clip = sides();
        return line;
    }

    static QRect ruleOf(const StyledLine::Piece& piece, const DeviceLine& line, double offset, double thickness) {
        const int height = std::max(1, static_cast<int>(std::lround(thickness * line.pixelSize)));
        const double middle = line.baseline + offset * line.pixelSize;
        const auto at
            = [&](double x) { return static_cast<int>(std::lround(boundedCoordinate(line.left + x * line.scale))); };
        const int left = at(piece.left);
        return QRect(left, static_cast<int>(std::lround(middle - height / 2.0)), at(piece.right) - left, height);
    }

    QRect sides() const {
        const auto at = [&](double x) { return static_cast<int>(std::lround(space_.map(x, 0).x())); };
        const int left = at(rect_.minX());
        return QRect(left, device_.top(), at(rect_.maxX()) - left, device_.height()) & device_;
    }

    void drawEffect(const DeviceLine& line) {
        const int step = std::max(1, static_cast<int>(std::lround(space_.scale())));
        DeviceLine nearby = line;
        nearby.clip = line.clip.adjusted(-step, -step, step, step);
        auto& composer = LineComposer::shared();
        if (!composer.compose(nearby, 0, toQColor(look_.effectColor)))
            return;
        auto& image = composer.image();
        if (look_.effect == StyledLook::Effect::Shadow)
            return painter_.drawImage(image.topLeft() + QPoint(step, step), image.view());
        for (const QPoint neighbour : Neighbours)
            painter_.drawImage(image.topLeft() + neighbour * step, image.view());
    }

    void drawPiece(const PlacedLine& placed, std::size_t i) {
        const auto& style = text_.styles[placed.line.pieces[i].style];
        auto& composer = LineComposer::shared();
        if (!composer.compose(deviceLine(placed, i), 0, style.gradient ? QColor(Qt::white) : toQColor(style.color)))
            return;
        QImage view = composer.image().view();
        if (style.gradient) {
            QPainter colors(&view);
            colors.setCompositionMode(QPainter::CompositionMode_SourceIn);
            colors.translate(-composer.image().topLeft());
            const QRectF box = space_.map(gradientBox(text_, placed, i));
            colors.fillRect(QRect(composer.image().topLeft(), view.size()), brushOf(*style.gradient, box));
        }
        painter_.drawImage(composer.image().topLeft(), view);
    }

    QPainter& painter_;
    QRect device_;
    DeviceSpace space_;
    const StyledText& text_;
    const Rect& rect_;
    const StyledLook& look_;
};

/// Outlines and decorations of a piece from the line's left end and baseline.
QPainterPath pathOf(const StyledLine::Piece& piece, const TextStyle& style) {
    const DeviceLine line{piece.line, 0, 0, std::min(style.size, TextPainter::LargestPixelSize), 1, true, {}, {}};
    auto path = LineComposer::outlines(line);
    path.setFillRule(Qt::WindingFill);
    const auto& metrics = style.typeface->metrics();
    const auto addRule = [&](double offset, double thickness) {
        const double height = std::max(1.0, thickness * style.size);
        path.addRect(QRectF(piece.left, offset * style.size - height / 2, piece.right - piece.left, height));
    };
    if (style.isUnderlined)
        addRule(metrics.underlineOffset, metrics.underlineThickness);
    if (style.isStruckThrough)
        addRule(-metrics.strikeOffset, metrics.strikeThickness);
    return path;
}

} // namespace

void draw(
    QPainter& painter, const StyledText& text, const StyledLayout& layout, const Rect& rect, const StyledLook& look) {
    UprightPainter upright(painter, text, rect, look);
    forEachLine(layout, rect, look, [&](const PlacedLine& placed) { upright.draw(placed); });
}

void drawOutlines(
    QPainter& painter, const StyledText& text, const StyledLayout& layout, const Rect& rect, const StyledLook& look) {
    painter.setRenderHint(QPainter::Antialiasing, look.antiAlias);
    forEachLine(layout, rect, look, [&](const PlacedLine& placed) {
        const QPointF origin(boundedCoordinate(placed.left), boundedCoordinate(placed.baseline()));
        const auto forEachPath = [&](auto use) {
            for (std::size_t i = 0; i < placed.line.pieces.size(); ++i) {
                const auto& style = text.styles[placed.line.pieces[i].style];
                use(pathOf(placed.line.pieces[i], style).translated(origin), style, i);
            }
        };
        if (look.effect == StyledLook::Effect::Shadow)
            forEachPath([&](const QPainterPath& path, const TextStyle&, std::size_t) {
                painter.fillPath(path.translated(1, 1), toQColor(look.effectColor));
            });
        else if (look.effect == StyledLook::Effect::Border)
            forEachPath([&](const QPainterPath& path, const TextStyle&, std::size_t) {
                for (const QPoint neighbour : Neighbours)
                    painter.fillPath(path.translated(neighbour), toQColor(look.effectColor));
            });
        forEachPath([&](const QPainterPath& path, const TextStyle& style, std::size_t) {
            if (style.shadow)
                painter.fillPath(
                    path.translated(style.shadow->offsetX, style.shadow->offsetY), toQColor(style.shadow->color));
        });
        forEachPath([&](const QPainterPath& path, const TextStyle& style, std::size_t i) {
            if (style.gradient)
                painter.fillPath(path, brushOf(*style.gradient, gradientBox(text, placed, i)));
            else
                painter.fillPath(path, toQColor(style.color));
        });
    });
}

Rect paintRect(const StyledText& text, const StyledLayout& layout, const Rect& rect, const StyledLook& look) {
    // For hinting, for what is rounded to whole pixels, and for the copies of an effect.
    const double margin = look.effect == StyledLook::Effect::None ? 2 : 4;
    std::optional<Rect> painted;
    forEachLine(layout, rect, look, [&](const PlacedLine& placed) {
        for (const auto& piece : placed.line.pieces) {
            const auto& style = text.styles[piece.style];
            Rect ink = piece.line.ink;
            if (style.isUnderlined || style.isStruckThrough)
                ink = ink.united({piece.left, -style.size, piece.right - piece.left, style.size * 1.5});
            ink = ink.translated(placed.left, placed.baseline()).expanded(margin);
            if (style.shadow)
                ink = ink.united(TextPainter::shadowRect(ink, *style.shadow));
            painted = painted ? painted->united(ink) : ink;
        }
    });
    return painted.value_or(Rect{rect.x, rect.y, 0, 0});
}

} // namespace Ostrel::StyledPainter
