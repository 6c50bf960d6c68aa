#include "OstrelEngine/Host/LineEditor.h"

#include <QTextBoundaryFinder>

namespace Ostrel {

namespace {

/// Far more than a person types; a pasted file must not stop the widget.
constexpr int MaxLength = 32768;

int characterAt(const QString& text, int position) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(position);
    if (!finder.isAtBoundary())
        finder.toPreviousBoundary();
    return static_cast<int>(finder.position());
}

int wordStart(const QString& text, int position, qsizetype (QTextBoundaryFinder::*step)()) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, text);
    finder.setPosition(position);
    while ((finder.*step)() != -1) {
        if (finder.boundaryReasons() & QTextBoundaryFinder::StartOfItem)
            return static_cast<int>(finder.position());
    }
    return step == &QTextBoundaryFinder::toNextBoundary ? static_cast<int>(text.size()) : 0;
}

} // namespace

LineEditor::LineEditor(const QString& text)
    : text_(text.left(MaxLength)) {
    selectAll();
}

bool LineEditor::isControl(QChar c) {
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

QString LineEditor::selectedText() const {
    return text_.mid(selectionStart(), selectionEnd() - selectionStart());
}

void LineEditor::insert(const QString& text) {
    QString plain = text;
    plain.removeIf(isControl);
    const int start = selectionStart();
    text_.remove(start, selectionEnd() - start);
    plain.truncate(std::max<qsizetype>(MaxLength - text_.size(), 0));
    text_.insert(start, plain);
    cursor_ = anchor_ = start + static_cast<int>(plain.size());
}

void LineEditor::erase(Move move) {
    if (!hasSelection())
        cursor_ = target(move);
    insert(QString());
}

void LineEditor::replace(int offset, int length, const QString& text) {
    const auto bounded = [this](int position) { return std::clamp(position, 0, static_cast<int>(text_.size())); };
    if (length > 0 || offset != 0) {
        anchor_ = bounded(cursor_ + offset);
        cursor_ = bounded(anchor_ + length);
    }
    insert(text);
}

void LineEditor::move(Move move, Selection selection) {
    const bool isStep = move == Move::previousCharacter || move == Move::nextCharacter;
    if (selection == Selection::drop && isStep && hasSelection())
        cursor_ = move == Move::previousCharacter ? selectionStart() : selectionEnd();
    else
        cursor_ = target(move);
    if (selection == Selection::drop)
        anchor_ = cursor_;
}

void LineEditor::setCursor(int position, Selection selection) {
    cursor_ = characterAt(text_, std::clamp(position, 0, static_cast<int>(text_.size())));
    if (selection == Selection::drop)
        anchor_ = cursor_;
}

void LineEditor::selectAll() {
    anchor_ = 0;
    cursor_ = static_cast<int>(text_.size());
}

void LineEditor::selectWordAt(int position) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Word, text_);
    finder.setPosition(std::clamp(position, 0, static_cast<int>(text_.size())));
    if (!finder.isAtBoundary())
        finder.toPreviousBoundary();
    anchor_ = static_cast<int>(finder.position());
    const auto end = finder.toNextBoundary();
    cursor_ = end == -1 ? static_cast<int>(text_.size()) : static_cast<int>(end);
}

int LineEditor::target(Move move) const {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text_);
    finder.setPosition(cursor_);
    switch (move) {
    case Move::previousCharacter:
        return static_cast<int>(std::max<qsizetype>(finder.toPreviousBoundary(), 0));
    case Move::nextCharacter:
        return finder.toNextBoundary() == -1 ? static_cast<int>(text_.size()) : static_cast<int>(finder.position());
    case Move::previousWord:
        return wordStart(text_, cursor_, &QTextBoundaryFinder::toPreviousBoundary);
    case Move::nextWord:
        return wordStart(text_, cursor_, &QTextBoundaryFinder::toNextBoundary);
    case Move::start:
        return 0;
    case Move::end:
        break;
    }
    return static_cast<int>(text_.size());
}

} // namespace Ostrel
