#include "OstrelGUI/Window/WidgetPreviewCard.h"

#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/LibraryLayout.h"
#include "OstrelGUI/Window/QtText.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace Ostrel {

namespace {

constexpr int PreviewHeight = 128;
constexpr int Padding = 14;
constexpr int ButtonHeight = 30;
constexpr int ButtonPadding = 26;
constexpr int StatusDot = 8;

/// Widgets are made to stand on pictures, most of them in white: they show on a little dusk of their own.
QLinearGradient previewGround(const QRectF& rect, bool isDark) {
    QLinearGradient ground(rect.topLeft(), rect.bottomRight());
    ground.setColorAt(0, isDark ? QColor(0x39, 0x46, 0x5c) : QColor(0x5b, 0x6d, 0x8c));
    ground.setColorAt(1, isDark ? QColor(0x25, 0x2a, 0x3c) : QColor(0x38, 0x40, 0x5e));
    return ground;
}

void paintPreview(QPainter& painter, const QRect& card, const QImage* preview, const CardLook& look) {
    const QRectF area = WidgetPreviewCard::previewRect(card);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(card).adjusted(0.5, 0.5, -0.5, -0.5), Metrics::CardRadius, Metrics::CardRadius);
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    painter.fillPath(shape, previewGround(area, look.theme.isDark));
    painter.restore();
    if (!preview)
        return;
    if (!preview->isNull()) {
        const double ratio = painter.device()->devicePixelRatioF();
        const QSizeF size = QSizeF(preview->size()) / ratio;
        // On whole device pixels, or else the picture would be resampled.
        const auto snapped = [ratio](double value) { return std::round(value * ratio) / ratio; };
        const QPointF corner(
            snapped(area.center().x() - size.width() / 2), snapped(area.center().y() - size.height() / 2));
        painter.drawImage(QRectF(corner, size), *preview);
        return;
    }
    const QColor faint(255, 255, 255, 150);
    paintSymbol(painter, Symbol::photo, QRectF(area.center().x() - 16, area.center().y() - 26, 32, 32), faint);
    painter.setFont(look.caption);
    painter.setPen(faint);
    painter.drawText(QRectF(area.left(), area.center().y() + 10, area.width(), 20), Qt::AlignHCenter | Qt::AlignTop,
        QStringLiteral("No Snapshot Yet"));
}

void paintStatus(QPainter& painter, const QRect& line, const WidgetLibraryItem& item, const CardLook& look) {
    const QColor color = look.theme.color(item.isRendered ? Tone::success : Tone::dim);
    painter.setPen(item.isRendered ? QPen(Qt::NoPen) : QPen(color, 1.5));
    painter.setBrush(item.isRendered ? QBrush(color) : QBrush(Qt::NoBrush));
    painter.drawEllipse(QRectF(line.left() + 1, line.center().y() - StatusDot / 2.0 + 0.5, StatusDot, StatusDot));
    painter.setFont(look.caption);
    painter.setPen(color);
    const QRect text = line.adjusted(StatusDot + 8, 0, -Metrics::Unit / 2, 0);
    painter.drawText(text, Qt::AlignVCenter | Qt::AlignLeft,
        look.captionMetrics.elidedText(WidgetPreviewCard::statusText(item), Qt::ElideRight, text.width()));
}

} // namespace

CardLook::CardLook(const QFont& font, const QPalette& palette)
    : theme(Theme::from(palette))
    , name(Type::strong(font))
    , text(font)
    , caption(Type::caption(font))
    , nameMetrics(name)
    , textMetrics(text)
    , captionMetrics(caption) { }

void paintButton(QPainter& painter, const QRect& rect, const QString& text, const QColor& fill, const QColor& color,
    ButtonState state, const CardLook& look) {
    const QRectF box(rect);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(box, Metrics::ControlRadius, Metrics::ControlRadius);
    if (state.isHovered || state.isPressed) {
        QColor layer = look.theme.text;
        layer.setAlphaF(state.isPressed ? 0.16F : 0.07F);
        painter.setBrush(layer);
        painter.drawRoundedRect(box, Metrics::ControlRadius, Metrics::ControlRadius);
    }
    painter.setFont(look.text);
    painter.setPen(color);
    painter.drawText(rect, Qt::AlignCenter, text);
    if (state.isFocused)
        paintFocusRing(painter, box.adjusted(-3, -3, 3, 3), Metrics::ControlRadius + 2, look.theme);
}

namespace WidgetPreviewCard {

QString statusText(const WidgetLibraryItem& item) {
    return item.isRendered ? QStringLiteral("Rendered") : QStringLiteral("Unrendered");
}

QString buttonTitle(const WidgetLibraryItem& item) {
    return item.isRendered ? QStringLiteral("Unrender") : QStringLiteral("Render");
}

QSize size(const CardLook& look) {
    int width = LibraryLayout::cardWidth;
    for (const bool isRendered : {false, true}) {
        WidgetLibraryItem item;
        item.isRendered = isRendered;
        const int words = look.captionMetrics.horizontalAdvance(statusText(item))
            + look.textMetrics.horizontalAdvance(buttonTitle(item));
        width = std::max(width, words + StatusDot + 3 * Metrics::Unit + ButtonPadding + 2 * Padding);
    }
    const int texts = look.nameMetrics.height() + look.captionMetrics.height() + 1;
    const int height = PreviewHeight + 3 * Padding + texts + ButtonHeight;
    return {width, std::max(LibraryLayout::CardHeight, height)};
}

QRect previewRect(const QRect& card) {
    return {card.left(), card.top(), card.width(), PreviewHeight};
}

QRect buttonRect(const QRect& card, const WidgetLibraryItem& item, const CardLook& look) {
    const int width = look.textMetrics.horizontalAdvance(buttonTitle(item)) + ButtonPadding;
    return {card.right() + 1 - Padding - width, card.bottom() + 1 - Padding - ButtonHeight, width, ButtonHeight};
}

void paint(QPainter& painter, const QRect& card, const WidgetLibraryItem& item, const QImage* preview,
    ButtonState state, const CardLook& look) {
    const Theme& theme = look.theme;
    const QRectF outline = QRectF(card).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.card);
    painter.drawRoundedRect(outline, Metrics::CardRadius, Metrics::CardRadius);
    paintPreview(painter, card, preview, look);
    painter.setPen(QPen(theme.border, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(outline, Metrics::CardRadius, Metrics::CardRadius);

    QRect text = card.adjusted(Padding, PreviewHeight + Padding - 2, -Padding, 0);
    text.setHeight(look.nameMetrics.height());
    painter.setFont(look.name);
    painter.setPen(theme.text);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
        look.nameMetrics.elidedText(textOf(item.displayName), Qt::ElideRight, text.width()));
    text.translate(0, text.height() + 1);
    text.setHeight(look.captionMetrics.height());
    painter.setFont(look.caption);
    const bool hasFailed = !item.failure.empty();
    painter.setPen(hasFailed ? theme.error : theme.dim);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
        look.captionMetrics.elidedText(textOf(hasFailed ? item.failure : item.relativePath),
            hasFailed ? Qt::ElideRight : Qt::ElideMiddle, text.width()));

    const QRect button = buttonRect(card, item, look);
    paintStatus(painter,
        QRect(card.left() + Padding, button.top(), button.left() - card.left() - Padding, ButtonHeight), item, look);
    if (item.isRendered)
        paintButton(painter, button, buttonTitle(item), theme.control, theme.text, state, look);
    else
        paintButton(painter, button, buttonTitle(item), theme.accent, theme.onAccent, state, look);
}

} // namespace WidgetPreviewCard

} // namespace Ostrel
