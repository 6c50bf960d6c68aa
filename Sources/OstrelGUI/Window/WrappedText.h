#pragma once

#include <QFontMetricsF>
#include <QStringView>

#include <array>
#include <vector>

namespace Ostrel {

/// Widths of a font's characters, kept, so that thousands of texts can be broken into lines at every width of a window
/// without shaping one of them. Kerning is left out: a line is at most a little shorter than it could be.
class CharacterWidths {
public:
    explicit CharacterWidths(const QFont& font);

    double width(QStringView text) const;
    double lineHeight() const { return metrics_.height(); }
    double ascent() const { return metrics_.ascent(); }

private:
    QFontMetricsF metrics_;
    std::array<double, 128> ascii_;
};

/// Of a text beyond these the rest is left out: it comes from somebody's file.
inline constexpr std::size_t MaximumWrappedLines = 64;
inline constexpr qsizetype MaximumWrappedCharacters = 8192;

/// Broken after blanks and at line feeds; a word that is too wide breaks where it must. Views into `text`; an empty
/// text is one empty line.
std::vector<QStringView> wrappedLines(QStringView text, double width, const CharacterWidths& widths);

} // namespace Ostrel
