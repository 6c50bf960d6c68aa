#pragma once

#include "OstrelEngine/Geometry.h"

#include <QRect>

#include <span>

// Where panels lie. An origin is a panel's bottom left corner, y upward from the bottom left corner of the primary
// screen; a frame is in the toolkit's coordinates, y downward.
namespace Ostrel::PanelPlacement {

/// Whole points that hold a widget of that size, bounded to what a window system takes at `scale` pixels a point and to
/// a picture of at most 128 MiB. At least one point a side.
QSize windowSize(Size widget, double scale);

/// A change of a point or less leaves the window alone.
bool shouldResizeWindow(Size current, Size proposed);

QRect frame(Point origin, const QSize& size, const QRect& primaryScreen);
Point origin(const QRect& frame, const QRect& primaryScreen);

/// The frame itself when enough of it to take hold of lies on a screen, else moved into the nearest one.
QRect broughtIntoView(const QRect& frame, std::span<const QRect> screens);

} // namespace Ostrel::PanelPlacement
