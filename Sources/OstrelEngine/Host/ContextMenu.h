#pragma once

#include "OstrelEngine/Host/DesktopLook.h"

#include <QBackingStore>
#include <QWindow>

#include <functional>
#include <vector>

class QPainter;

namespace Ostrel {

/// A menu that pops up at a point of the screen and goes away with a choice, a click elsewhere or Escape. Main thread.
class ContextMenu final : public QWindow {
public:
    struct Item {
        /// Empty for a line between items.
        QString text;
        bool isOn = false;
        std::function<void()> action;
    };

    ContextMenu(std::vector<Item> items, DesktopLook look);

    const DesktopLook& look() const { return look_; }

    void popUp(const QPoint& at);

    /// After the choice's action, if there was a choice. What is called may destroy the menu, though not at once.
    std::function<void()> onClosed;

protected:
    bool event(QEvent* event) override;
    void exposeEvent(QExposeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QSize wantedSize() const;
    int heightOf(const Item& item) const;
    /// The item at a point; -1 for none and for a line.
    int indexAt(const QPointF& point) const;
    void highlight(int index);
    void step(int direction);
    void choose(int index);
    void closeMenu();
    void paint();
    void paintItem(QPainter& painter, const QRect& row, const Item& item, bool isHighlighted) const;

    std::vector<Item> items_;
    DesktopLook look_;
    QBackingStore store_;
    int highlighted_ = -1;
    /// Only once the pointer has moved over an item does the release of the button that opened the menu choose one.
    bool hasMoved_ = false;
    bool isOpen_ = false;
};

} // namespace Ostrel
