#include "OstrelGUI/Window/Theme.h"

#include <QFontDatabase>

namespace Ostrel {

namespace {

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

QColor mixed(const QColor& a, const QColor& b, double share) {
    const auto part = [share](int x, int y) { return static_cast<int>(x + (y - x) * share + 0.5); };
    return {part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue())};
}

/// How bright a color seems, 0 to 1.
double luminance(const QColor& color) {
    return 0.299 * color.redF() + 0.587 * color.greenF() + 0.114 * color.blueF();
}

QFont scaled(const QFont& base, double factor, QFont::Weight weight) {
    QFont font = base;
    if (base.pointSizeF() > 0)
        font.setPointSizeF(base.pointSizeF() * factor);
    else
        font.setPixelSize(static_cast<int>(base.pixelSize() * factor + 0.5));
    font.setWeight(weight);
    return font;
}

} // namespace

QPalette Theme::palette(bool dark, const QColor& accent) {
    const QColor text = dark ? QColor(0xf2, 0xf2, 0xf4) : QColor(0x26, 0x26, 0x2a);
    const QColor window = dark ? QColor(0x1f, 0x1f, 0x23) : QColor(0xfa, 0xfa, 0xfb);
    const QColor button = dark ? QColor(0x3a, 0x3a, 0x40) : QColor(0xec, 0xec, 0xef);
    QPalette palette(text, button, Qt::white, Qt::black, button, text, Qt::white, window, window);
    palette.setColor(QPalette::Base, dark ? QColor(0x2b, 0x2b, 0x30) : QColor(0xff, 0xff, 0xff));
    palette.setColor(QPalette::AlternateBase, dark ? QColor(0x28, 0x28, 0x2d) : QColor(0xef, 0xef, 0xf2));
    palette.setColor(QPalette::PlaceholderText, mixed(text, window, 0.36));
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(
        QPalette::HighlightedText, luminance(accent) > 0.68 ? QColor(0x1d, 0x1d, 0x20) : QColor(Qt::white));
    palette.setColor(QPalette::Link, accent);
    palette.setColor(QPalette::ToolTipBase, dark ? QColor(0x3a, 0x3a, 0x40) : QColor(0x2c, 0x2c, 0x30));
    palette.setColor(QPalette::ToolTipText, QColor(0xf2, 0xf2, 0xf4));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, mixed(text, window, 0.6));
    return palette;
}

Theme Theme::from(const QPalette& palette) {
    Theme theme;
    theme.window = palette.color(QPalette::Active, QPalette::Window);
    theme.text = palette.color(QPalette::Active, QPalette::WindowText);
    theme.isDark = luminance(theme.window) < 0.5;
    theme.sidebar = palette.color(QPalette::Active, QPalette::AlternateBase);
    theme.card = palette.color(QPalette::Active, QPalette::Base);
    theme.border = withAlpha(theme.text, theme.isDark ? 0.09 : 0.1);
    theme.hover = withAlpha(theme.text, 0.06);
    theme.control = palette.color(QPalette::Active, QPalette::Button);
    theme.dim = palette.color(QPalette::Active, QPalette::PlaceholderText);
    theme.accent = palette.color(QPalette::Active, QPalette::Highlight);
    theme.onAccent = palette.color(QPalette::Active, QPalette::HighlightedText);
    theme.success = theme.isDark ? QColor(0x5f, 0xd3, 0x8d) : QColor(0x1a, 0x7f, 0x4b);
    theme.warning = theme.isDark ? QColor(0xf5, 0xc2, 0x55) : QColor(0xa1, 0x63, 0x00);
    theme.error = theme.isDark ? QColor(0xff, 0x85, 0x78) : QColor(0xc4, 0x2b, 0x2b);
    return theme;
}

QColor Theme::color(Tone tone) const {
    switch (tone) {
    case Tone::normal:
        return text;
    case Tone::dim:
        return dim;
    case Tone::accent:
        return accent;
    case Tone::success:
        return success;
    case Tone::warning:
        return warning;
    case Tone::error:
        return error;
    }
    return text;
}

QColor Theme::tint(Tone tone) const {
    return withAlpha(color(tone), isDark ? 0.18 : 0.12);
}

namespace Type {

QFont title(const QFont& base) {
    return scaled(base, 1.75, QFont::Bold);
}

QFont heading(const QFont& base) {
    return scaled(base, 1.15, QFont::DemiBold);
}

QFont strong(const QFont& base) {
    return scaled(base, 1, QFont::DemiBold);
}

QFont caption(const QFont& base) {
    return scaled(base, 0.9, QFont::Normal);
}

QFont monospace(const QFont& base) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(base.pointSizeF() > 0 ? base.pointSizeF() * 0.95 : font.pointSizeF());
    return font;
}

} // namespace Type

} // namespace Ostrel
