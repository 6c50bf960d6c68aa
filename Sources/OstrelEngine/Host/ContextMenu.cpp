#include "OstrelEngine/Host/ContextMenu.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace Ostrel {

namespace {

constexpr int ItemPadding = 5;
constexpr int LineHeight = 9;
constexpr int Border = 4;
/// Room for the mark of an item that is on.
constexpr int MarkWidth = 24;

QRect screenAt(const QPoint& point) {
    const QScreen* screen = QGuiApplication::screenAt(point);
    screen = screen ? screen : QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect(point, QSize(1, 1));
}

} // namespace

ContextMenu::ContextMenu(std::vector<Item> items, DesktopLook look)
    : items_(std::move(items))
    , look_(std::move(look))
    , store_(this) {
    setFlags(Qt::Popup | Qt::FramelessWindowHint);
    resize(wantedSize());
}

void ContextMenu::popUp(const QPoint& at) {
    const QRect screen = screenAt(at);
    const int x = std::clamp(at.x(), screen.left(), std::max(screen.right() - width(), screen.left()));
    const int y = std::clamp(at.y(), screen.top(), std::max(screen.bottom() - height(), screen.top()));
    setPosition(x, y);
    isOpen_ = true;
    show();
    raise();
    // A click anywhere closes the menu, so it must see them all.
    setMouseGrabEnabled(true);
    setKeyboardGrabEnabled(true);
}

int ContextMenu::heightOf(const Item& item) const {
    return item.text.isEmpty() ? LineHeight : QFontMetrics(look_.font).height() + 2 * ItemPadding;
}

QSize ContextMenu::wantedSize() const {
    const QFontMetrics metrics(look_.font);
    int width = 0;
    int height = 2 * Border;
    for (const auto& item : items_) {
        width = std::max(width, metrics.horizontalAdvance(item.text));
        height += heightOf(item);
    }
    return {width + 2 * MarkWidth, height};
}

int ContextMenu::indexAt(const QPointF& point) const {
    int top = Border;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const int bottom = top + heightOf(items_[i]);
        if (point.y() >= top && point.y() < bottom && point.x() >= 0 && point.x() < width())
            return items_[i].text.isEmpty() ? -1 : static_cast<int>(i);
        top = bottom;
    }
    return -1;
}

bool ContextMenu::event(QEvent* event) {
    if (event->type() == QEvent::Close || event->type() == QEvent::FocusOut) {
        closeMenu();
        return true;
    }
    return QWindow::event(event);
}

void ContextMenu::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Escape:
        closeMenu();
        break;
    case Qt::Key_Up:
        step(-1);
        break;
    case Qt::Key_Down:
        step(1);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (highlighted_ >= 0)
            choose(highlighted_);
        break;
    default:
        event->ignore();
    }
}

void ContextMenu::mousePressEvent(QMouseEvent* event) {
    hasMoved_ = true;
    highlight(indexAt(event->position()));
    if (!QRectF(QPointF(), size()).contains(event->position()))
        closeMenu();
}

void ContextMenu::mouseMoveEvent(QMouseEvent* event) {
    highlight(indexAt(event->position()));
    hasMoved_ = hasMoved_ || highlighted_ >= 0;
}

void ContextMenu::mouseReleaseEvent(QMouseEvent* event) {
    if (const int index = indexAt(event->position()); index >= 0 && hasMoved_)
        choose(index);
}

void ContextMenu::highlight(int index) {
    if (index == highlighted_)
        return;
    highlighted_ = index;
    paint();
}

void ContextMenu::step(int direction) {
    const int count = static_cast<int>(items_.size());
    int index = highlighted_;
    for (int i = 0; i < count; ++i) {
        index = index < 0 ? (direction > 0 ? 0 : count - 1) : (index + direction + count) % count;
        if (!items_[static_cast<std::size_t>(index)].text.isEmpty())
            return highlight(index);
    }
}

void ContextMenu::choose(int index) {
    if (!isOpen_)
        return;
    const auto action = items_[static_cast<std::size_t>(index)].action;
    hide();
    if (action)
        action();
    closeMenu();
}

void ContextMenu::closeMenu() {
    if (!std::exchange(isOpen_, false))
        return;
    setMouseGrabEnabled(false);
    setKeyboardGrabEnabled(false);
    hide();
    if (onClosed)
        onClosed();
}

void ContextMenu::exposeEvent(QExposeEvent*) {
    paint();
}

void ContextMenu::paint() {
    if (!isExposed())
        return;
    const QRect all(QPoint(), size());
    store_.resize(size());
    store_.beginPaint(all);
    {
        const QPalette& palette = look_.palette;
        QPainter painter(store_.paintDevice());
        painter.setFont(look_.font);
        painter.fillRect(all, palette.color(QPalette::Base));
        painter.setPen(palette.color(QPalette::Mid));
        painter.drawRect(all.adjusted(0, 0, -1, -1));
        int top = Border;
        for (std::size_t i = 0; i < items_.size(); ++i) {
            const QRect row(1, top, width() - 2, heightOf(items_[i]));
            paintItem(painter, row, items_[i], static_cast<int>(i) == highlighted_);
            top += row.height();
        }
    }
    store_.endPaint();
    store_.flush(all);
}

void ContextMenu::paintItem(QPainter& painter, const QRect& row, const Item& item, bool isHighlighted) const {
    const QPalette& palette = look_.palette;
    if (item.text.isEmpty()) {
        painter.setPen(palette.color(QPalette::Mid));
        painter.drawLine(row.left() + ItemPadding, row.center().y(), row.right() - ItemPadding, row.center().y());
        return;
    }
    if (isHighlighted)
        painter.fillRect(row, palette.color(QPalette::Highlight));
    painter.setPen(palette.color(isHighlighted ? QPalette::HighlightedText : QPalette::Text));
    painter.drawText(row.adjusted(MarkWidth, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, item.text);
    if (item.isOn)
        painter.drawText(QRect(row.left(), row.top(), MarkWidth, row.height()), Qt::AlignCenter, QChar(0x2713));
}

} // namespace Ostrel
