#pragma once

class QImage;

/// The application's mark, a gauge with its needle's hub, drawn here so that the resident process needs no picture
/// format for it. `Packaging/dev.ostrel.gui.svg` is the same for the desktop.
namespace Ostrel::OstrelIcon {

/// So many pixels a side, ARGB with premultiplied alpha.
QImage draw(int pixels);

} // namespace Ostrel::OstrelIcon
