#include "OstrelGUI/Window/RowList.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>

#include <vector>

namespace Ostrel {

namespace {

constexpr double IconSide = 18;
constexpr int AnyWidth = 320;
constexpr double StatusIconSide = 16;

} // namespace

struct RowList::Fonts {
    Fonts(const QFont& base, RowListLayout::Spacing spacing)
        : heading(Type::strong(base))
        , text(base)
        , headingWidths(heading)
        , textWidths(text)
        , layout(headingWidths, textWidths, spacing) { }

    QFont heading;
    QFont text;
    CharacterWidths headingWidths;
    CharacterWidths textWidths;
    RowListLayout layout;
};

RowList::RowList(Shape shape, QWidget* parent)
    : QWidget(parent)
    , shape_(shape) {
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    useFonts();
}

RowList::~RowList() = default;

void RowList::useFonts() {
    fonts_
        = std::make_unique<Fonts>(font(), RowListLayout::Spacing{inset(), shape_ == Shape::cards ? Metrics::Unit : 0});
    laidOutWidth_ = -1;
}

void RowList::setRows(std::vector<Row> rows) {
    rows_ = std::move(rows);
    laidOutWidth_ = -1;
    updateGeometry();
    update();
}

void RowList::layOut(int width) const {
    if (laidOutWidth_ == width)
        return;
    const std::vector<RowListLayout::Row> rows(rows_.begin(), rows_.end());
    fonts_->layout.layOut(rows, width);
    laidOutWidth_ = width;
}

int RowList::heightForWidth(int width) const {
    layOut(width);
    return fonts_->layout.height();
}

QSize RowList::sizeHint() const {
    return {AnyWidth, heightForWidth(width() > 0 ? width() : AnyWidth)};
}

/// A height here would be kept to at every width.
QSize RowList::minimumSizeHint() const {
    return {AnyWidth / 2, 0};
}

void RowList::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange) {
        useFonts();
        updateGeometry();
    }
    QWidget::changeEvent(event);
}

void RowList::paintEvent(QPaintEvent* event) {
    layOut(width());
    const Theme theme = Theme::from(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto [first, end] = fonts_->layout.rowsBetween(event->rect().top(), event->rect().bottom() + 1);
    for (std::size_t i = first; i < end; ++i)
        paintRow(painter, theme, i);
}

/// What divides a row from its neighbours.
void RowList::paintGround(QPainter& painter, const Theme& theme, std::size_t index) const {
    const auto [top, bottom] = fonts_->layout.verticalExtent(index);
    if (shape_ == Shape::cards) {
        painter.setPen(QPen(theme.border, 1));
        painter.setBrush(theme.card);
        painter.drawRoundedRect(
            QRectF(0.5, top + 0.5, width() - 1, bottom - top - 1), Metrics::CardRadius, Metrics::CardRadius);
    } else if (index > 0) {
        painter.fillRect(QRectF(left(), top, width() - left(), 1), theme.border);
    }
}

void RowList::paintRow(QPainter& painter, const Theme& theme, std::size_t index) const {
    const Row& row = rows_[index];
    const CharacterWidths& texts = fonts_->textWidths;
    const auto [top, bottom] = fonts_->layout.verticalExtent(index);
    paintGround(painter, theme, index);
    double y = top + RowListLayout::Padding;
    const double firstLine = row.heading.isEmpty() ? texts.lineHeight() : fonts_->headingWidths.lineHeight();
    paintSymbol(painter, row.symbol, QRectF(inset(), y + (firstLine - IconSide) / 2, IconSide, IconSide),
        theme.color(row.tone));
    if (!row.heading.isEmpty()) {
        paintHeading(painter, theme, row, y);
        y += firstLine + RowListLayout::Leading;
    }
    painter.setFont(fonts_->text);
    painter.setPen(row.heading.isEmpty() ? theme.text : theme.dim);
    if (!row.text.isEmpty()) {
        for (const QStringView line : wrappedLines(row.text, fonts_->layout.textWidth(row, width()), texts)) {
            painter.drawText(QPointF(left(), y + texts.ascent()), line.toString());
            y += texts.lineHeight();
        }
    }
    if (!row.status.isEmpty())
        paintStatus(painter, theme, row, top, bottom);
}

void RowList::paintHeading(QPainter& painter, const Theme& theme, const Row& row, double top) const {
    const QFontMetricsF metrics(fonts_->heading);
    const double baseline = top + fonts_->headingWidths.ascent();
    const double room = fonts_->layout.textWidth(row, width());
    const QString heading = metrics.elidedText(row.heading, Qt::ElideRight, room);
    painter.setFont(fonts_->heading);
    painter.setPen(theme.text);
    painter.drawText(QPointF(left(), baseline), heading);
    const double used = metrics.horizontalAdvance(heading) + Metrics::Unit;
    if (row.badge.isEmpty() || used >= room)
        return;
    painter.setFont(fonts_->text);
    painter.setPen(theme.dim);
    painter.drawText(QPointF(left() + used, baseline),
        QFontMetricsF(fonts_->text).elidedText(row.badge, Qt::ElideRight, room - used));
}

void RowList::paintStatus(QPainter& painter, const Theme& theme, const Row& row, int top, int bottom) const {
    const double textWidth = fonts_->textWidths.width(row.status);
    const double middle = (top + bottom) / 2.0;
    const double start = width() - inset() - textWidth;
    painter.setFont(fonts_->text);
    painter.setPen(theme.color(row.tone));
    painter.drawText(QRectF(start, top, textWidth + 1, bottom - top), Qt::AlignVCenter | Qt::AlignLeft, row.status);
    paintSymbol(painter, row.statusSymbol,
        QRectF(start - StatusIconSide - 6, middle - StatusIconSide / 2, StatusIconSide, StatusIconSide),
        theme.color(row.tone));
}

PaintedParts::Part RowList::part(int index) const {
    layOut(width());
    const Row& row = rows_[static_cast<std::size_t>(index)];
    const auto [top, bottom] = fonts_->layout.verticalExtent(static_cast<std::size_t>(index));
    QStringList words{row.heading, row.badge, row.status};
    words.removeAll(QString());
    return {QAccessible::ListItem, words.isEmpty() ? row.text : words.join(QStringLiteral(", ")),
        words.isEmpty() ? QString() : row.text, QRect(0, top, width(), bottom - top)};
}

int RowList::partAt(QPoint position) const {
    if (position.y() < 0)
        return -1;
    layOut(width());
    const auto [first, end] = fonts_->layout.rowsBetween(position.y(), position.y() + 1);
    return first < end ? static_cast<int>(first) : -1;
}

} // namespace Ostrel
