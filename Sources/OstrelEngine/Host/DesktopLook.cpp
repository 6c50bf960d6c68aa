#include "OstrelEngine/Host/DesktopLook.h"

#include "OstrelPlatform/DesktopAppearance.h"

#include <QColor>
#include <QGuiApplication>

#include <algorithm>

namespace Ostrel {

namespace {

constexpr QColor DefaultAccent(0x35, 0x84, 0xe4);
constexpr double SmallestFont = 6;
constexpr double LargestFont = 48;

QPalette paletteOf(bool isDark, const QColor& accent) {
    const QColor text = isDark ? QColor(0xf2, 0xf2, 0xf4) : QColor(0x26, 0x26, 0x2a);
    QPalette palette;
    palette.setColor(QPalette::Base, isDark ? QColor(0x2b, 0x2b, 0x30) : QColor(Qt::white));
    palette.setColor(QPalette::Mid, isDark ? QColor(0x50, 0x50, 0x57) : QColor(0xc4, 0xc4, 0xc9));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Highlight, accent);
    const bool isLight = accent.red() * 0.299 + accent.green() * 0.587 + accent.blue() * 0.114 > 173;
    palette.setColor(QPalette::HighlightedText, isLight ? QColor(0x1d, 0x1d, 0x20) : QColor(Qt::white));
    return palette;
}

} // namespace

DesktopLook DesktopLook::of(DesktopAppearance* appearance) {
    DesktopLook look{QGuiApplication::palette(), QGuiApplication::font()};
    if (!appearance)
        return look;
    if (const auto isDark = appearance->prefersDark()) {
        const auto accent = appearance->accentColor();
        const auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
        look.palette = paletteOf(*isDark,
            accent ? QColor::fromRgbF(part(accent->red), part(accent->green), part(accent->blue)) : DefaultAccent);
    }
    if (const auto size = appearance->interfaceFontSize())
        look.font.setPointSizeF(std::clamp(*size, SmallestFont, LargestFont));
    return look;
}

} // namespace Ostrel
