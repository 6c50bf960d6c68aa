#include "OstrelGUI/Window/WrappedText.h"

namespace Ostrel {

namespace {

/// How many units of `text` fit; at least one character, so that a narrow column ends.
qsizetype fittingPrefix(QStringView text, double width, const CharacterWidths& widths) {
    double used = 0;
    qsizetype end = 0;
    while (end < text.size()) {
        const qsizetype length = text[end].isHighSurrogate() && end + 1 < text.size() ? 2 : 1;
        used += widths.width(text.mid(end, length));
        if (used > width && end > 0)
            break;
        end += length;
    }
    return end;
}

/// The end of the line that begins at the start of `text`, which holds no line feed.
qsizetype lineEnd(QStringView text, double width, const CharacterWidths& widths) {
    double used = 0;
    qsizetype end = 0;
    while (end < text.size()) {
        const qsizetype blank = text.indexOf(u' ', end);
        const qsizetype wordEnd = blank < 0 ? text.size() : blank;
        used += widths.width(text.mid(end, wordEnd - end));
        if (used > width)
            return end > 0 ? end : fittingPrefix(text.left(wordEnd), width, widths);
        if (blank < 0)
            return text.size();
        used += widths.width(u" ");
        end = blank + 1;
    }
    return end;
}

} // namespace

CharacterWidths::CharacterWidths(const QFont& font)
    : metrics_(font) {
    for (std::size_t i = 0; i < ascii_.size(); ++i)
        ascii_[i] = metrics_.horizontalAdvance(QChar(static_cast<char16_t>(i)));
}

double CharacterWidths::width(QStringView text) const {
    double sum = 0;
    for (const QChar c : text) {
        if (c.unicode() >= ascii_.size())
            return metrics_.horizontalAdvance(text.toString());
        sum += ascii_[c.unicode()];
    }
    return sum;
}

std::vector<QStringView> wrappedLines(QStringView text, double width, const CharacterWidths& widths) {
    std::vector<QStringView> lines;
    text = text.left(MaximumWrappedCharacters);
    while (lines.size() < MaximumWrappedLines) {
        const qsizetype feed = text.indexOf(u'\n');
        QStringView paragraph = feed < 0 ? text : text.left(feed);
        do {
            const qsizetype end = lineEnd(paragraph, width, widths);
            lines.push_back(paragraph.left(end).trimmed());
            paragraph = paragraph.mid(end);
        } while (!paragraph.isEmpty() && lines.size() < MaximumWrappedLines);
        if (feed < 0)
            break;
        text = text.mid(feed + 1);
    }
    return lines;
}

} // namespace Ostrel
