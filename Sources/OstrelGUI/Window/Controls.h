#pragma once

#include "OstrelGUI/Window/SymbolIcons.h"

#include <QAbstractButton>
#include <QFrame>
#include <QLabel>
#include <QTimer>

class QVBoxLayout;

namespace Ostrel {

/// A rounded surface for what belongs together.
class Card : public QFrame {
public:
    /// Without a title there is none.
    explicit Card(const QString& title = {}, QWidget* parent = nullptr);

    QVBoxLayout& column() { return *column_; }
    QLabel* titleLabel() { return title_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* column_;
    QLabel* title_ = nullptr;
};

/// A label of plain text that wraps; the dim one says what is less important.
QLabel* makeLabel(const QString& text);
QLabel* makeDimLabel(const QString& text);

/// One line, dim, that gives way in its middle; the whole text is in its tool tip.
class ElidedLabel final : public QWidget {
public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    void setText(const QString& text);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text_;
};

/// A short word on a rounded ground in its tone.
class Pill final : public QWidget {
public:
    explicit Pill(QWidget* parent = nullptr);

    void show(Symbol symbol, const QString& text, Tone tone);
    const QString& text() const { return text_; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Symbol symbol_ = Symbol::none;
    QString text_;
    Tone tone_ = Tone::normal;
};

/// One picture, in a tone.
class SymbolView final : public QWidget {
public:
    SymbolView(Symbol symbol, int side, Tone tone, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Symbol symbol_;
    Tone tone_;
};

/// A row with a text and a switch at its end.
class SwitchRow final : public QAbstractButton {
public:
    explicit SwitchRow(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// One of several choices: a title, a wrapped subtitle, and a mark on the one that holds.
class OptionRow final : public QAbstractButton {
public:
    OptionRow(const QString& title, const QString& subtitle, QWidget* parent = nullptr);

    void setSubtitle(const QString& subtitle);
    const QString& subtitle() const { return subtitle_; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString subtitle_;
};

/// A turning ring, for as long as it shows.
class BusyIndicator final : public QWidget {
public:
    explicit BusyIndicator(int side, QWidget* parent = nullptr);

    /// One picture of the ring; `turn` from 0 to 1.
    static void paint(QPainter& painter, const QRectF& rect, const QColor& color, double turn);
    /// Of the ring now: all that turn, turn alike.
    static double currentTurn();
    static constexpr int FrameMilliseconds = 50;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QTimer timer_;
};

/// The ring around what has the keyboard.
void paintFocusRing(QPainter& painter, const QRectF& rect, double radius, const Theme& theme);

} // namespace Ostrel
