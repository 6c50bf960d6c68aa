#include "OstrelEngine/Host/InputField.h"

#include <QClipboard>
#include <QFontInfo>
#include <QGuiApplication>
#include <QInputMethod>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QStyleHints>

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>

namespace Ostrel {

namespace {

using Move = LineEditor::Move;
using Selection = LineEditor::Selection;

constexpr int Margin = 4;
constexpr int SmallestText = 8;
/// Wider than any text that fits into the editor.
constexpr qreal OneLineWidth = 1 << 20;

QRect frameOf(const InputTextPresentation& presentation) {
    const auto whole = [](double value) { return static_cast<int>(std::lround(std::clamp(value, -32000.0, 32000.0))); };
    const auto& frame = presentation.frame;
    return {whole(frame.x), whole(frame.y), std::max(whole(frame.width), 1), std::max(whole(frame.height), 1)};
}

/// The desktop's font, made smaller where the field is too low for it.
QFont fontFor(const QRect& frame, QFont font) {
    const int largest = std::max(QFontInfo(font).pixelSize(), SmallestText);
    font.setPixelSize(std::clamp(frame.height() - 2 * Margin, SmallestText, largest));
    return font;
}

struct Binding {
    QKeySequence::StandardKey key;
    Move move;
};

constexpr Binding Moves[] = {
    {QKeySequence::MoveToPreviousChar, Move::previousCharacter},
    {QKeySequence::MoveToNextChar, Move::nextCharacter},
    {QKeySequence::MoveToPreviousWord, Move::previousWord},
    {QKeySequence::MoveToNextWord, Move::nextWord},
    {QKeySequence::MoveToStartOfLine, Move::start},
    {QKeySequence::MoveToEndOfLine, Move::end},
};
constexpr Binding Selections[] = {
    {QKeySequence::SelectPreviousChar, Move::previousCharacter},
    {QKeySequence::SelectNextChar, Move::nextCharacter},
    {QKeySequence::SelectPreviousWord, Move::previousWord},
    {QKeySequence::SelectNextWord, Move::nextWord},
    {QKeySequence::SelectStartOfLine, Move::start},
    {QKeySequence::SelectEndOfLine, Move::end},
};
constexpr Binding Erasures[] = {
    {QKeySequence::Backspace, Move::previousCharacter},
    {QKeySequence::Delete, Move::nextCharacter},
    {QKeySequence::DeleteStartOfWord, Move::previousWord},
    {QKeySequence::DeleteEndOfWord, Move::nextWord},
};

std::optional<Move> bound(std::span<const Binding> bindings, QKeyEvent* event) {
    for (const auto& binding : bindings) {
        if (event->matches(binding.key))
            return binding.move;
    }
    return std::nullopt;
}

} // namespace

InputField::InputField(const InputTextPresentation& presentation, DesktopLook look)
    : frame_(frameOf(presentation))
    , look_(std::move(look))
    , isPassword_(presentation.isPassword)
    , store_(this)
    , editor_(QString::fromStdString(presentation.defaultValue))
    , default_(presentation.defaultValue)
    , untouched_(editor_.text()) {
    setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint);
    setMinimumSize(frame_.size());
    setMaximumSize(frame_.size());
    layout_.setFont(fontFor(frame_, look_.font));
    setCursor(Qt::IBeamCursor);
    refresh();
}

void InputField::open(const QPoint& panelPosition) {
    follow(panelPosition);
    show();
    raise();
    requestActivate();
}

void InputField::follow(const QPoint& panelPosition) {
    setGeometry(frame_.translated(panelPosition));
}

bool InputField::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::InputMethod:
        takeComposition(static_cast<QInputMethodEvent*>(event));
        return true;
    case QEvent::InputMethodQuery:
        answerInputMethod(static_cast<QInputMethodQueryEvent*>(event));
        return true;
    case QEvent::Leave:
        if (onPointerLeave)
            onPointerLeave();
        return true;
    case QEvent::Close:
        event->ignore();
        if (onCancel)
            onCancel();
        return true;
    default:
        return QWindow::event(event);
    }
}

void InputField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (onSubmit)
            onSubmit(text());
    } else if (event->key() == Qt::Key_Escape) {
        if (onCancel)
            onCancel();
    } else if (edit(event)) {
        refresh();
    } else {
        event->ignore();
    }
}

bool InputField::edit(QKeyEvent* event) {
    if (useClipboard(event) || moveOrErase(event))
        return true;
    const QString typed = event->text();
    const bool isShortcut = event->modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)
        // The right Alt key of many layouts is reported as both and types characters.
        && !event->modifiers().testFlags(Qt::ControlModifier | Qt::AltModifier);
    if (typed.isEmpty() || isShortcut || !typed.at(0).isPrint())
        return false;
    editor_.insert(typed);
    return true;
}

bool InputField::moveOrErase(QKeyEvent* event) {
    if (const auto move = bound(Moves, event))
        editor_.move(*move, Selection::drop);
    else if (const auto selection = bound(Selections, event))
        editor_.move(*selection, Selection::extend);
    else if (const auto erasure = bound(Erasures, event))
        editor_.erase(*erasure);
    else
        return false;
    return true;
}

bool InputField::useClipboard(QKeyEvent* event) {
    if (event->matches(QKeySequence::SelectAll)) {
        editor_.selectAll();
        return true;
    }
    if (event->matches(QKeySequence::Paste)) {
        paste(false);
        return true;
    }
    const bool isCut = event->matches(QKeySequence::Cut);
    if (!isCut && !event->matches(QKeySequence::Copy))
        return false;
    // A password is not handed on.
    if (!editor_.hasSelection() || isPassword_)
        return true;
    QGuiApplication::clipboard()->setText(editor_.selectedText());
    if (isCut)
        editor_.insert(QString());
    return true;
}

void InputField::paste(bool fromSelection) {
    editor_.insert(QGuiApplication::clipboard()->text(fromSelection ? QClipboard::Selection : QClipboard::Clipboard));
}

void InputField::takeComposition(QInputMethodEvent* event) {
    if (!event->commitString().isEmpty() || event->replacementLength() > 0)
        editor_.replace(event->replacementStart(), event->replacementLength(), event->commitString());
    composition_ = event->preeditString();
    refresh();
}

void InputField::answerInputMethod(QInputMethodQueryEvent* event) const {
    event->setValue(Qt::ImEnabled, true);
    event->setValue(Qt::ImCursorRectangle, cursorRectangle());
    event->setValue(Qt::ImFont, layout_.font());
    event->setValue(Qt::ImCursorPosition, editor_.cursor());
    event->setValue(Qt::ImAnchorPosition, editor_.anchor());
    event->setValue(Qt::ImSurroundingText, isPassword_ ? QString() : editor_.text());
    event->setValue(Qt::ImCurrentSelection, isPassword_ ? QString() : editor_.selectedText());
    event->setValue(Qt::ImHints,
        isPassword_ ? static_cast<int>(Qt::ImhHiddenText | Qt::ImhSensitiveData | Qt::ImhNoPredictiveText) : 0);
    event->accept();
}

void InputField::mousePressEvent(QMouseEvent* event) {
    const bool isPaste = event->button() == Qt::MiddleButton;
    if (event->button() != Qt::LeftButton && !isPaste)
        return;
    requestActivate();
    const bool extends = event->modifiers().testFlag(Qt::ShiftModifier) && !isPaste;
    editor_.setCursor(positionAt(event->position()), extends ? Selection::extend : Selection::drop);
    if (isPaste)
        paste(true);
    refresh();
}

void InputField::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton))
        return;
    editor_.setCursor(positionAt(event->position()), Selection::extend);
    refresh();
}

void InputField::mouseDoubleClickEvent(QMouseEvent* event) {
    if (isPassword_)
        editor_.selectAll();
    else
        editor_.selectWordAt(positionAt(event->position()));
    refresh();
}

void InputField::focusInEvent(QFocusEvent*) {
    blink(true);
}

void InputField::focusOutEvent(QFocusEvent*) {
    blinkTimer_.stop();
    isCursorOn_ = false;
    paint();
}

/// The cursor stands still after every change and goes on blinking from there.
void InputField::blink(bool isOn) {
    isCursorOn_ = isOn;
    if (const int period = QGuiApplication::styleHints()->cursorFlashTime(); period > 0)
        blinkTimer_.start(period / 2, this);
    paint();
}

void InputField::timerEvent(QTimerEvent* event) {
    if (event->timerId() == blinkTimer_.timerId())
        blink(!isCursorOn_);
}

std::string InputField::text() const {
    // As it was given: the editor has read it as Unicode, and no more of it than a person would edit.
    return editor_.text() == untouched_ ? default_ : editor_.text().toStdString();
}

QString InputField::displayed(const QString& text) const {
    if (isPassword_)
        return QString(text.size(), QChar(0x25CF));
    QString shown = text;
    // One line, in which every character keeps its place.
    for (QChar& c : shown) {
        if (LineEditor::isControl(c))
            c = ' ';
    }
    return shown;
}

void InputField::refresh() {
    layOut();
    if (isActive())
        blink(true);
    else
        paint();
    if (isExposed())
        QGuiApplication::inputMethod()->update(Qt::ImQueryInput);
}

void InputField::layOut() {
    QString text = displayed(editor_.text());
    text.insert(editor_.cursor(), displayed(composition_));
    layout_.setText(text);
    layout_.beginLayout();
    QTextLine line = layout_.createLine();
    if (line.isValid()) {
        line.setLineWidth(OneLineWidth);
        line.setPosition({0, (frame_.height() - line.height()) / 2});
    }
    layout_.endLayout();

    const qreal cursor = layout_.lineCount() > 0
        ? layout_.lineAt(0).cursorToX(editor_.cursor() + static_cast<int>(composition_.size()))
        : 0;
    const qreal room = std::max(frame_.width() - 2 * Margin, 1);
    scroll_ = std::clamp(scroll_, cursor - room, cursor);
    scroll_ = std::max(scroll_, 0.0);
}

int InputField::positionAt(const QPointF& point) const {
    if (layout_.lineCount() == 0)
        return 0;
    return layout_.lineAt(0).xToCursor(point.x() - Margin + scroll_);
}

QRectF InputField::cursorRectangle() const {
    if (layout_.lineCount() == 0)
        return {Margin, 0, 1, static_cast<qreal>(frame_.height())};
    const QTextLine line = layout_.lineAt(0);
    const qreal x = line.cursorToX(editor_.cursor() + static_cast<int>(composition_.size()));
    return {Margin - scroll_ + x, line.y(), 1, line.height()};
}

void InputField::exposeEvent(QExposeEvent*) {
    paint();
}

void InputField::resizeEvent(QResizeEvent* event) {
    store_.resize(event->size());
}

void InputField::paint() {
    if (!isExposed())
        return;
    const QRect all(QPoint(), size());
    store_.resize(size());
    store_.beginPaint(all);
    {
        const QPalette& palette = look_.palette;
        QPainter painter(store_.paintDevice());
        painter.fillRect(all, palette.color(QPalette::Base));
        painter.setPen(palette.color(QPalette::Mid));
        painter.drawRect(all.adjusted(0, 0, -1, -1));
        painter.setClipRect(all.adjusted(Margin - 1, 1, 1 - Margin, -1));
        painter.setPen(palette.color(QPalette::Text));
        layout_.draw(&painter, {Margin - scroll_, 0}, decorations(palette));
        if (isCursorOn_)
            painter.fillRect(cursorRectangle(), palette.color(QPalette::Text));
    }
    store_.endPaint();
    store_.flush(all);
}

/// The selection, and the line below what an input method composes.
QList<QTextLayout::FormatRange> InputField::decorations(const QPalette& palette) const {
    QList<QTextLayout::FormatRange> ranges;
    const auto add = [&](int start, qsizetype length, const QTextCharFormat& format) {
        QTextLayout::FormatRange range;
        range.start = start;
        range.length = static_cast<int>(length);
        range.format = format;
        ranges.push_back(range);
    };
    QTextCharFormat format;
    if (!composition_.isEmpty()) {
        format.setFontUnderline(true);
        add(editor_.cursor(), composition_.size(), format);
    } else if (editor_.hasSelection()) {
        format.setBackground(palette.brush(QPalette::Highlight));
        format.setForeground(palette.brush(QPalette::HighlightedText));
        add(editor_.selectionStart(), editor_.selectionEnd() - editor_.selectionStart(), format);
    }
    return ranges;
}

} // namespace Ostrel
