#pragma once

#include "OstrelGUI/Window/Theme.h"

#include <QIcon>

class QPainter;
class QPainterPath;

namespace Ostrel {

/// The window's pictures, drawn from outlines of our own and so sharp at any size. Each has the name under which the
/// pages speak of it.
enum class Symbol {
    none,
    squareGrid, // square.grid.2x2
    shippingBox, // shippingbox.fill
    musicNote, // music.note
    gear, // gearshape
    sidebarLeading, // sidebar.leading
    xmarkCircle, // xmark.circle.fill
    checkmarkCircle, // checkmark.circle.fill
    exclamationTriangle, // exclamationmark.triangle.fill
    xmarkOctagon, // xmark.octagon.fill
    infoCircle, // info.circle.fill
    exclamationOctagon, // exclamationmark.octagon.fill
    trash, // trash
    photo, // photo.on.rectangle
    circlingArrows, // arrow.triangle.2.circlepath
    lockShield, // lock.shield
    musicNoteList, // music.note.list
    checkmark, // checkmark
    // Without a name of their own: the drop hint, and the open panel.
    trayArrow,
    chevronLeft,
    chevronRight,
    chevronUp,
    folder,
    document,
};
inline constexpr int SymbolCount = static_cast<int>(Symbol::document) + 1;

/// In a square of 24 by 24, to be filled in one color. Made once.
const QPainterPath& symbolPath(Symbol symbol);
/// The largest square in the middle of `rect`.
void paintSymbol(QPainter& painter, Symbol symbol, const QRectF& rect, const QColor& color);
/// Takes its color from the palette of the application at each paint.
QIcon symbolIcon(Symbol symbol, Tone tone = Tone::normal);

} // namespace Ostrel
