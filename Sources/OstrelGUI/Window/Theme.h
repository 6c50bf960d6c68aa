#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

namespace Ostrel {

/// What a color says.
enum class Tone { normal, dim, accent, success, warning, error };

/// The colors of the main window. They are derived from a palette, so that every widget finds them in its own, and a
/// change of the application's palette repaints everything.
struct Theme {
    bool isDark = false;
    QColor window;
    QColor sidebar;
    QColor card;
    /// Around cards and between rows; translucent.
    QColor border;
    /// What a pointer leaves on a row or a quiet button; translucent.
    QColor hover;
    QColor control;
    QColor text;
    QColor dim;
    QColor accent;
    QColor onAccent;
    QColor success;
    QColor warning;
    QColor error;

    static Theme from(const QPalette& palette);
    /// The palette that `from` understands: our neutral grays, and the desktop's accent.
    static QPalette palette(bool dark, const QColor& accent);
    static QColor defaultAccent() { return QColor(0x35, 0x84, 0xe4); }

    QColor color(Tone tone) const;
    /// The tone as a background for text in that tone.
    QColor tint(Tone tone) const;
};

/// One grid for all pages, in device-independent pixels.
namespace Metrics {
inline constexpr int Unit = 8;
inline constexpr int PageMargin = 24;
inline constexpr int CardPadding = 16;
inline constexpr int CardRadius = 12;
inline constexpr int ControlRadius = 8;
inline constexpr int ControlHeight = 34;
/// Text is hard to read in longer lines.
inline constexpr int ReadingWidth = 880;
} // namespace Metrics

/// Type sizes, in proportion to the desktop's own font.
namespace Type {
QFont title(const QFont& base);
QFont heading(const QFont& base);
QFont strong(const QFont& base);
QFont caption(const QFont& base);
QFont monospace(const QFont& base);
} // namespace Type

} // namespace Ostrel
