#pragma once

#include "OstrelGUI/WidgetLibraryItem.h"
#include "OstrelGUI/Window/Theme.h"

#include <QFontMetrics>
#include <QImage>
#include <QRect>

class QPainter;

namespace Ostrel {

/// What the cards of the library share, made once for a font and a palette.
struct CardLook {
    CardLook(const QFont& font, const QPalette& palette);

    Theme theme;
    QFont name;
    QFont text;
    QFont caption;
    QFontMetrics nameMetrics;
    QFontMetrics textMetrics;
    QFontMetrics captionMetrics;
};

/// The button that a pointer or the keyboard is on.
struct ButtonState {
    bool isHovered = false;
    bool isPressed = false;
    bool isFocused = false;
};

/// A painted push button with a text in the middle.
void paintButton(QPainter& painter, const QRect& rect, const QString& text, const QColor& fill, const QColor& color,
    ButtonState state, const CardLook& look);

/// One widget of the library: how it looked last, its name, where it is, whether it shows, and the button for that.
namespace WidgetPreviewCard {

QString statusText(const WidgetLibraryItem& item);
QString buttonTitle(const WidgetLibraryItem& item);
/// Large enough for the words at the look's type size.
QSize size(const CardLook& look);
QRect previewRect(const QRect& card);
QRect buttonRect(const QRect& card, const WidgetLibraryItem& item, const CardLook& look);
/// The preview at the scale of the painter; null while it is being decoded, a null image when there is none.
void paint(QPainter& painter, const QRect& card, const WidgetLibraryItem& item, const QImage* preview,
    ButtonState state, const CardLook& look);

} // namespace WidgetPreviewCard

} // namespace Ostrel
