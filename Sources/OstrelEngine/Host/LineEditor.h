#pragma once

#include <QString>

#include <algorithm>

namespace Ostrel {

/// The text of a one-line field, its cursor and selection. Positions count UTF-16 units and never fall inside what a
/// reader takes for one character. Knows no window.
class LineEditor {
public:
    /// Holds the text as it is, line ends and all. All of it is selected at first.
    explicit LineEditor(const QString& text);

    /// Line ends and what else shows nothing.
    static bool isControl(QChar c);

    enum class Move { previousCharacter, nextCharacter, previousWord, nextWord, start, end };
    enum class Selection { drop, extend };

    const QString& text() const { return text_; }
    int cursor() const { return cursor_; }
    /// The other end of the selection; the cursor's own place when nothing is selected.
    int anchor() const { return anchor_; }
    int selectionStart() const { return std::min(cursor_, anchor_); }
    int selectionEnd() const { return std::max(cursor_, anchor_); }
    bool hasSelection() const { return cursor_ != anchor_; }
    QString selectedText() const;

    /// In place of the selection; line ends and other control characters are left out.
    void insert(const QString& text);
    /// The selection, or else what lies between the cursor and where it would move.
    void erase(Move move);
    void move(Move move, Selection selection);
    void setCursor(int position, Selection selection);
    void selectAll();
    void selectWordAt(int position);
    /// Replaces a part of the text at `offset` from the cursor, as input methods ask.
    void replace(int offset, int length, const QString& text);

private:
    int target(Move move) const;

    QString text_;
    int cursor_ = 0;
    int anchor_ = 0;
};

} // namespace Ostrel
