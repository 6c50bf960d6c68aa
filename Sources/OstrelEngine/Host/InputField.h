#pragma once

#include "OstrelEngine/Host/DesktopLook.h"
#include "OstrelEngine/Host/LineEditor.h"
#include "OstrelEngine/Measures/InputTextPresentation.h"

#include <QBackingStore>
#include <QBasicTimer>
#include <QTextLayout>
#include <QWindow>

#include <functional>
#include <string>

class QInputMethodEvent;
class QInputMethodQueryEvent;

namespace Ostrel {

/// A text field of its own window, placed over a widget: the widget's panel never takes the keyboard, so that typing
/// elsewhere goes on, and this does for as long as it is open. Main thread.
class InputField final : public QWindow {
public:
    /// Nothing is shown yet. The default text is selected.
    InputField(const InputTextPresentation& presentation, DesktopLook look);

    const DesktopLook& look() const { return look_; }

    /// Shows the field at its place in a panel whose top left corner lies there, and takes the keyboard.
    void open(const QPoint& panelPosition);
    /// The panel has been moved.
    void follow(const QPoint& panelPosition);

    /// What Return submits: the default unchanged while nobody has changed it.
    std::string text() const;

    /// Return and Escape. What is called may close the field.
    std::function<void(const std::string& text)> onSubmit;
    std::function<void()> onCancel;
    std::function<void()> onPointerLeave;

protected:
    bool event(QEvent* event) override;
    void exposeEvent(QExposeEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    bool edit(QKeyEvent* event);
    bool moveOrErase(QKeyEvent* event);
    bool useClipboard(QKeyEvent* event);
    void paste(bool fromSelection);
    void takeComposition(QInputMethodEvent* event);
    void answerInputMethod(QInputMethodQueryEvent* event) const;

    /// After every change of text, cursor or composition.
    void refresh();
    void layOut();
    void blink(bool isOn);
    void paint();
    int positionAt(const QPointF& point) const;
    QRectF cursorRectangle() const;
    QList<QTextLayout::FormatRange> decorations(const QPalette& palette) const;
    /// What shows in the field: the text, line ends as blanks, or a dot for each character of a password.
    QString displayed(const QString& text) const;

    const QRect frame_;
    const DesktopLook look_;
    const bool isPassword_;
    QBackingStore store_;
    LineEditor editor_;
    const std::string default_;
    const QString untouched_;
    /// What an input method has composed and not yet committed; it stands at the cursor.
    QString composition_;
    QTextLayout layout_;
    /// How far the text has moved to the left to show the cursor.
    qreal scroll_ = 0;
    QBasicTimer blinkTimer_;
    bool isCursorOn_ = false;
};

} // namespace Ostrel
