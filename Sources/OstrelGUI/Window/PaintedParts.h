#pragma once

#include <QAccessible>
#include <QRect>
#include <QString>

namespace Ostrel {

/// A widget that paints what others would build from thousands of widgets tells here what stands in it, so that screen
/// readers find it all the same. Make `installPaintedParts` known once before the first is shown.
class PaintedParts {
public:
    struct Part {
        QAccessible::Role role = QAccessible::ListItem;
        QString name;
        QString description;
        /// In the widget.
        QRect rect;
        bool isFocused = false;
    };

    virtual ~PaintedParts() = default;
    virtual int partCount() const = 0;
    virtual Part part(int index) const = 0;
    /// Negative when there is none.
    virtual int partAt(QPoint position) const = 0;
    virtual void pressPart(int) { }
    virtual QAccessible::Role partsRole() const { return QAccessible::List; }
};

void installPaintedParts();

} // namespace Ostrel
