#include "OstrelGUI/Window/Controls.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <algorithm>

namespace Ostrel {

namespace {

constexpr int PillHeight = 26;
constexpr int PillIcon = 15;
constexpr int MarkColumn = 34;
constexpr QSize SwitchSize(44, 26);

constexpr int WrappedFlags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;

} // namespace

void paintFocusRing(QPainter& painter, const QRectF& rect, double radius, const Theme& theme) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme.accent, 2));
    painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), radius, radius);
}

Card::Card(const QString& title, QWidget* parent)
    : QFrame(parent)
    , column_(new QVBoxLayout(this)) {
    column_->setContentsMargins(Metrics::CardPadding, Metrics::CardPadding, Metrics::CardPadding, Metrics::CardPadding);
    column_->setSpacing(Metrics::Unit);
    if (title.isEmpty())
        return;
    title_ = new QLabel(title);
    title_->setFont(Type::heading(font()));
    column_->addWidget(title_);
    setAccessibleName(title);
}

void Card::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::from(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(theme.card);
    painter.setPen(QPen(theme.border, 1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Metrics::CardRadius, Metrics::CardRadius);
}

QLabel* makeLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLabel* makeDimLabel(const QString& text) {
    QLabel* label = makeLabel(text);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

ElidedLabel::ElidedLabel(QWidget* parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ElidedLabel::setText(const QString& text) {
    text_ = text;
    setToolTip(text);
    setAccessibleName(text);
    update();
}

QSize ElidedLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text_), fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(Theme::from(palette()).dim);
    painter.drawText(
        rect(), Qt::AlignVCenter | Qt::AlignLeft, fontMetrics().elidedText(text_, Qt::ElideMiddle, width()));
}

Pill::Pill(QWidget* parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Pill::show(Symbol symbol, const QString& text, Tone tone) {
    symbol_ = symbol;
    text_ = text;
    tone_ = tone;
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize Pill::sizeHint() const {
    const int icon = symbol_ == Symbol::none ? 0 : PillIcon + 6;
    return {QFontMetrics(Type::strong(font())).horizontalAdvance(text_) + icon + 22, PillHeight};
}

void Pill::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::from(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.tint(tone_));
    painter.drawRoundedRect(QRectF(rect()), PillHeight / 2.0, PillHeight / 2.0);
    double left = 11;
    if (symbol_ != Symbol::none) {
        paintSymbol(
            painter, symbol_, QRectF(left, (height() - PillIcon) / 2.0, PillIcon, PillIcon), theme.color(tone_));
        left += PillIcon + 6;
    }
    painter.setFont(Type::strong(font()));
    painter.setPen(theme.color(tone_));
    painter.drawText(QRectF(left, 0, width() - left, height()), Qt::AlignVCenter | Qt::AlignLeft, text_);
}

SymbolView::SymbolView(Symbol symbol, int side, Tone tone, QWidget* parent)
    : QWidget(parent)
    , symbol_(symbol)
    , tone_(tone) {
    setFixedSize(side, side);
}

void SymbolView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintSymbol(painter, symbol_, rect(), Theme::from(palette()).color(tone_));
}

SwitchRow::SwitchRow(const QString& text, QWidget* parent)
    : QAbstractButton(parent) {
    setText(text);
    setCheckable(true);
    setAccessibleName(text);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize SwitchRow::sizeHint() const {
    return {
        fontMetrics().horizontalAdvance(text()) + SwitchSize.width() + 3 * Metrics::Unit, Metrics::ControlHeight + 6};
}

void SwitchRow::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::from(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(theme.text);
    painter.drawText(
        rect().adjusted(0, 0, -SwitchSize.width() - Metrics::Unit, 0), Qt::AlignVCenter | Qt::AlignLeft, text());
    const QRectF track(width() - SwitchSize.width() - 4, (height() - SwitchSize.height()) / 2.0, SwitchSize.width(),
        SwitchSize.height());
    QColor off = theme.text;
    off.setAlphaF(underMouse() ? 0.3F : 0.22F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isChecked() ? theme.accent : off);
    painter.drawRoundedRect(track, track.height() / 2, track.height() / 2);
    const double knob = track.height() - 6;
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(isChecked() ? track.right() - knob - 3 : track.left() + 3, track.top() + 3, knob, knob));
    if (hasFocus())
        paintFocusRing(painter, track.adjusted(-4, -4, 4, 4), track.height() / 2 + 3, theme);
}

OptionRow::OptionRow(const QString& title, const QString& subtitle, QWidget* parent)
    : QAbstractButton(parent)
    , subtitle_(subtitle) {
    setText(title);
    setCheckable(true);
    setAccessibleName(title);
    setAccessibleDescription(subtitle);
    setFocusPolicy(Qt::TabFocus);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void OptionRow::setSubtitle(const QString& subtitle) {
    subtitle_ = subtitle;
    setAccessibleDescription(subtitle);
    updateGeometry();
    update();
}

int OptionRow::heightForWidth(int width) const {
    const int room = std::max(40, width - MarkColumn - 2 * Metrics::Unit);
    const int body = fontMetrics().boundingRect(QRect(0, 0, room, 10000), WrappedFlags, subtitle_).height();
    return QFontMetrics(Type::strong(font())).height() + 2 + body + 3 * Metrics::Unit;
}

QSize OptionRow::sizeHint() const {
    constexpr int AnyWidth = 360;
    return {AnyWidth, heightForWidth(width() > 100 ? width() : AnyWidth)};
}

QSize OptionRow::minimumSizeHint() const {
    return {MarkColumn, 0};
}

void OptionRow::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::from(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (underMouse() || isDown()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.hover);
        painter.drawRoundedRect(rect(), Metrics::ControlRadius, Metrics::ControlRadius);
    }
    const QFont strong = Type::strong(font());
    const int line = QFontMetrics(strong).height();
    QRect text = rect().adjusted(MarkColumn + Metrics::Unit, 3 * Metrics::Unit / 2, -Metrics::Unit, 0);
    if (isChecked())
        paintSymbol(painter, Symbol::checkmark, QRectF(Metrics::Unit + 4, text.top() + (line - 18) / 2.0, 18, 18),
            theme.accent);
    painter.setFont(strong);
    painter.setPen(theme.text);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignTop, this->text());
    painter.setFont(font());
    painter.setPen(theme.dim);
    painter.drawText(text.adjusted(0, line + 2, 0, 0), WrappedFlags, subtitle_);
    if (hasFocus())
        paintFocusRing(painter, rect(), Metrics::ControlRadius, theme);
}

BusyIndicator::BusyIndicator(int side, QWidget* parent)
    : QWidget(parent) {
    setFixedSize(side, side);
    timer_.setInterval(FrameMilliseconds);
    connect(&timer_, &QTimer::timeout, this, [this] { update(); });
}

double BusyIndicator::currentTurn() {
    static QElapsedTimer clock = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    constexpr int Period = 900;
    return static_cast<double>(clock.elapsed() % Period) / Period;
}

void BusyIndicator::paint(QPainter& painter, const QRectF& rect, const QColor& color, double turn) {
    const double width = rect.width() / 8;
    const QRectF ring = rect.adjusted(width, width, -width, -width);
    QColor faint = color;
    faint.setAlphaF(0.18F);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(faint, width));
    painter.drawEllipse(ring);
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap));
    constexpr int FullCircle = 360 * 16;
    painter.drawArc(ring, static_cast<int>(-turn * FullCircle), FullCircle / 4);
}

void BusyIndicator::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paint(painter, rect(), Theme::from(palette()).accent, currentTurn());
}

void BusyIndicator::showEvent(QShowEvent* event) {
    timer_.start();
    QWidget::showEvent(event);
}

void BusyIndicator::hideEvent(QHideEvent* event) {
    timer_.stop();
    QWidget::hideEvent(event);
}

} // namespace Ostrel
