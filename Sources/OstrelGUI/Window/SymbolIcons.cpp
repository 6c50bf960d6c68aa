#include "OstrelGUI/Window/SymbolIcons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace Ostrel {

namespace {

constexpr double Box = 24;
constexpr double Line = 1.7;

QPainterPath stroked(const QPainterPath& path, double width = Line) {
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    return stroker.createStroke(path).simplified();
}

QPainterPath polyline(std::initializer_list<QPointF> points) {
    QPainterPath path;
    for (const QPointF& point : points)
        path.elementCount() == 0 ? path.moveTo(point) : path.lineTo(point);
    return path;
}

QPainterPath roundedRect(double x, double y, double width, double height, double radius) {
    QPainterPath path;
    path.addRoundedRect(QRectF(x, y, width, height), radius, radius);
    return path;
}

QPainterPath ellipse(double x, double y, double radiusX, double radiusY) {
    QPainterPath path;
    path.addEllipse(QPointF(x, y), radiusX, radiusY);
    return path;
}

/// A polygon with soft corners, filled.
QPainterPath softPolygon(const QPainterPath& outline, double softness = 2) {
    QPainterPath path = outline;
    path.closeSubpath();
    return path.united(stroked(path, softness));
}

QPainterPath regularPolygon(int corners, double radius, double turn) {
    QPainterPath path;
    for (int i = 0; i < corners; ++i) {
        const double angle = turn + 2 * std::numbers::pi * i / corners;
        const QPointF point(12 + radius * std::cos(angle), 12 + radius * std::sin(angle));
        i == 0 ? path.moveTo(point) : path.lineTo(point);
    }
    return path;
}

QPainterPath disc() {
    return ellipse(12, 12, 9.6, 9.6);
}

QPainterPath octagon() {
    return softPolygon(regularPolygon(8, 8.9, std::numbers::pi / 8));
}

QPainterPath cross() {
    QPainterPath path = polyline({{8.9, 8.9}, {15.1, 15.1}});
    path.addPath(polyline({{15.1, 8.9}, {8.9, 15.1}}));
    return stroked(path, 1.9);
}

QPainterPath check() {
    return stroked(polyline({{7.9, 12.4}, {10.8, 15.3}, {16.2, 8.9}}), 1.9);
}

QPainterPath exclamation(double top, double bottom) {
    return stroked(polyline({{12, top}, {12, bottom - 3.6}}), 1.9).united(ellipse(12, bottom, 1.15, 1.15));
}

QPainterPath information() {
    return stroked(polyline({{12, 11.4}, {12, 16.4}}), 1.9).united(ellipse(12, 7.8, 1.2, 1.2));
}

QPainterPath triangle() {
    return softPolygon(polyline({{12, 4}, {21, 19.4}, {3, 19.4}}), 3);
}

QPainterPath grid() {
    QPainterPath path;
    for (const double x : {3.6, 13.4}) {
        for (const double y : {3.6, 13.4})
            path.addPath(stroked(roundedRect(x, y, 7, 7, 1.8)));
    }
    return path;
}

QPainterPath shippingBox() {
    const QPainterPath body = softPolygon(polyline({{12, 3}, {20, 7}, {20, 16.8}, {12, 21}, {4, 16.8}, {4, 7}}), 1.6);
    QPainterPath seams = polyline({{3, 6.6}, {12, 11.2}, {21, 6.6}});
    seams.addPath(polyline({{12, 11.2}, {12, 22}}));
    seams.addPath(polyline({{7.6, 4.6}, {16.4, 9.2}}));
    return body.subtracted(stroked(seams, 1.3));
}

QPainterPath note(double x, double y) {
    const QPainterPath head = QTransform().translate(x, y).rotate(-20).map(ellipse(0, 0, 3.3, 2.6));
    QPainterPath flag;
    flag.moveTo(x + 3, y - 13.4);
    flag.cubicTo(x + 3.2, y - 10, x + 8.4, y - 10.4, x + 6.8, y - 5.6);
    flag.cubicTo(x + 6.6, y - 8, x + 4, y - 8.2, x + 3, y - 8.4);
    flag.closeSubpath();
    const QPainterPath stem = stroked(polyline({{x + 2.5, y - 0.6}, {x + 2.5, y - 13}}), 1.5);
    return head.united(stem).united(flag.united(stroked(flag, 0.8)));
}

QPainterPath gear() {
    constexpr int Teeth = 8;
    QPainterPath outline;
    for (int i = 0; i < Teeth; ++i) {
        const double middle = 2 * std::numbers::pi * i / Teeth;
        constexpr std::array<std::pair<double, double>, 4> Corners{
            {{-0.27, 7.2}, {-0.17, 9.6}, {0.17, 9.6}, {0.27, 7.2}}};
        for (const auto& [turn, radius] : Corners) {
            const QPointF point(12 + radius * std::cos(middle + turn), 12 + radius * std::sin(middle + turn));
            outline.elementCount() == 0 ? outline.moveTo(point) : outline.lineTo(point);
        }
    }
    outline.closeSubpath();
    return stroked(outline, 1.6).united(stroked(ellipse(12, 12, 3.1, 3.1), 1.6));
}

QPainterPath sidebar() {
    QPainterPath lines = roundedRect(2.6, 4.6, 18.8, 14.8, 3);
    lines.addPath(polyline({{9.2, 4.6}, {9.2, 19.4}}));
    QPainterPath rows = polyline({{5, 8.2}, {6.8, 8.2}});
    rows.addPath(polyline({{5, 11}, {6.8, 11}}));
    return stroked(lines).united(stroked(rows, 1.3));
}

QPainterPath trash() {
    QPainterPath lines = polyline({{4.4, 6.4}, {19.6, 6.4}});
    lines.addPath(polyline({{6, 6.8}, {6.8, 18.6}, {8.4, 20.6}, {15.6, 20.6}, {17.2, 18.6}, {18, 6.8}}));
    lines.addPath(polyline({{8.8, 6}, {9.4, 3.6}, {14.6, 3.6}, {15.2, 6}}));
    QPainterPath ribs = polyline({{10.1, 10}, {10.4, 17}});
    ribs.addPath(polyline({{13.9, 10}, {13.6, 17}}));
    return stroked(lines).united(stroked(ribs, 1.4));
}

QPainterPath photo() {
    QPainterPath back = polyline({{6.2, 4.2}, {19.6, 4.2}, {21.4, 6}, {21.4, 14.6}});
    const QPainterPath frame = stroked(roundedRect(2.6, 7.4, 15.6, 12.8, 2.6), 1.5);
    const QPainterPath inside = roundedRect(2.6, 7.4, 15.6, 12.8, 2.6);
    const QPainterPath hills = softPolygon(
        polyline({{2.6, 18.4}, {7.4, 13.4}, {10.6, 16.4}, {13.2, 14.2}, {18.2, 18}, {18.2, 20}, {2.6, 20}}), 0.6);
    return stroked(back, 1.5).united(frame).united(hills.intersected(inside)).united(ellipse(13, 11.2, 1.4, 1.4));
}

QPainterPath halfCircleArrow(double startDegrees) {
    constexpr double Radius = 7.6;
    QPainterPath arc;
    const QRectF box(12 - Radius, 12 - Radius, 2 * Radius, 2 * Radius);
    arc.arcMoveTo(box, startDegrees);
    arc.arcTo(box, startDegrees, -128);
    const double end = (startDegrees - 128) * std::numbers::pi / 180;
    const QPointF tip(12 + Radius * std::cos(end), 12 - Radius * std::sin(end));
    const QPainterPath head = softPolygon(polyline({{-3, -2.6}, {3, -2.6}, {0, 2.6}}), 0.8);
    const QTransform place = QTransform().translate(tip.x(), tip.y()).rotate(-(startDegrees - 128));
    return stroked(arc).united(place.map(head));
}

QPainterPath lockShield() {
    QPainterPath shield;
    shield.moveTo(12, 2.6);
    shield.cubicTo(14.4, 4.6, 17.2, 5.4, 20, 5.6);
    shield.cubicTo(20.2, 13.4, 17.6, 18.6, 12, 21.4);
    shield.cubicTo(6.4, 18.6, 3.8, 13.4, 4, 5.6);
    shield.cubicTo(6.8, 5.4, 9.6, 4.6, 12, 2.6);
    QPainterPath bow;
    bow.moveTo(10, 11);
    bow.lineTo(10, 9.6);
    bow.arcTo(QRectF(10, 7.6, 4, 4), 180, -180);
    bow.lineTo(14, 11);
    return stroked(shield, 1.6).united(roundedRect(8.6, 10.8, 6.8, 5.2, 1.2)).united(stroked(bow, 1.3));
}

QPainterPath noteList() {
    QPainterPath lines = polyline({{3.6, 5.6}, {13, 5.6}});
    lines.addPath(polyline({{3.6, 10.4}, {11, 10.4}}));
    lines.addPath(polyline({{3.6, 15.2}, {8.4, 15.2}}));
    return stroked(lines).united(QTransform().translate(1.2, 2).scale(0.94, 0.94).map(note(13.2, 18.4)));
}

QPainterPath trayArrow() {
    QPainterPath lines = polyline({{12, 3.4}, {12, 14}});
    lines.addPath(polyline({{7.8, 10}, {12, 14.2}, {16.2, 10}}));
    lines.addPath(polyline({{3.8, 14.6}, {3.8, 18.4}, {5.8, 20.4}, {18.2, 20.4}, {20.2, 18.4}, {20.2, 14.6}}));
    return stroked(lines, 1.8);
}

QPainterPath folder() {
    QPainterPath path = polyline(
        {{3, 18.4}, {3, 6.2}, {4, 5.2}, {9, 5.2}, {11, 7.4}, {20, 7.4}, {21, 8.4}, {21, 18.4}, {20, 19.4}, {4, 19.4}});
    return softPolygon(path, 1.2);
}

QPainterPath document() {
    QPainterPath lines = polyline({{13.6, 3}, {6, 3}, {6, 21}, {18, 21}, {18, 7.4}, {13.6, 3}, {13.6, 7.6}, {18, 7.6}});
    lines.addPath(polyline({{9, 12.4}, {15, 12.4}}));
    lines.addPath(polyline({{9, 16}, {13, 16}}));
    return stroked(lines, 1.5);
}

QPainterPath makePath(Symbol symbol) {
    switch (symbol) {
    case Symbol::none:
        return {};
    case Symbol::squareGrid:
        return grid();
    case Symbol::shippingBox:
        return shippingBox();
    case Symbol::musicNote:
        return note(9.4, 17.8);
    case Symbol::gear:
        return gear();
    case Symbol::sidebarLeading:
        return sidebar();
    case Symbol::xmarkCircle:
        return disc().subtracted(cross());
    case Symbol::checkmarkCircle:
        return disc().subtracted(check());
    case Symbol::exclamationTriangle:
        return triangle().subtracted(exclamation(8.8, 17.2));
    case Symbol::xmarkOctagon:
        return octagon().subtracted(cross());
    case Symbol::infoCircle:
        return disc().subtracted(information());
    case Symbol::exclamationOctagon:
        return octagon().subtracted(exclamation(7.4, 16.4));
    case Symbol::trash:
        return trash();
    case Symbol::photo:
        return photo();
    case Symbol::circlingArrows:
        return halfCircleArrow(160).united(halfCircleArrow(-20));
    case Symbol::lockShield:
        return lockShield();
    case Symbol::musicNoteList:
        return noteList();
    case Symbol::checkmark:
        return stroked(polyline({{5, 12.8}, {9.8, 17.6}, {19, 6.8}}), 2.2);
    case Symbol::trayArrow:
        return trayArrow();
    case Symbol::chevronLeft:
        return stroked(polyline({{14.6, 5.6}, {8.4, 12}, {14.6, 18.4}}), 2);
    case Symbol::chevronRight:
        return stroked(polyline({{9.4, 5.6}, {15.6, 12}, {9.4, 18.4}}), 2);
    case Symbol::chevronUp:
        return stroked(polyline({{5.6, 14.6}, {12, 8.4}, {18.4, 14.6}}), 2);
    case Symbol::folder:
        return folder();
    case Symbol::document:
        return document();
    }
    return {};
}

class SymbolEngine final : public QIconEngine {
public:
    SymbolEngine(Symbol symbol, Tone tone)
        : symbol_(symbol)
        , tone_(tone) { }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const Theme theme = Theme::from(QGuiApplication::palette());
        QColor color = theme.color(tone_);
        if (mode == QIcon::Disabled)
            color.setAlphaF(0.4F);
        paintSymbol(*painter, symbol_, rect, color);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return picture;
    }
    QIconEngine* clone() const override { return new SymbolEngine(*this); }

private:
    Symbol symbol_;
    Tone tone_;
};

} // namespace

const QPainterPath& symbolPath(Symbol symbol) {
    static std::array<std::optional<QPainterPath>, SymbolCount> paths;
    std::optional<QPainterPath>& path = paths[static_cast<std::size_t>(symbol)];
    if (!path)
        path = makePath(symbol);
    return *path;
}

void paintSymbol(QPainter& painter, Symbol symbol, const QRectF& rect, const QColor& color) {
    const double side = std::min(rect.width(), rect.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.center() - QPointF(side / 2, side / 2));
    painter.scale(side / Box, side / Box);
    painter.fillPath(symbolPath(symbol), color);
    painter.restore();
}

QIcon symbolIcon(Symbol symbol, Tone tone) {
    return QIcon(new SymbolEngine(symbol, tone));
}

} // namespace Ostrel
