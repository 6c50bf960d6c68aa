#include "OstrelGUI/Window/LibraryGrid.h"

#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/QtText.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <optional>
#include <vector>

namespace Ostrel {

namespace {

constexpr int RemoveHeight = 30;
constexpr int RemoveIcon = 16;
/// Around a preview in its place.
constexpr int PreviewPadding = 12;

QString removeTitle() {
    return QStringLiteral("Remove Pack");
}

QString removeHelp() {
    return QStringLiteral("Permanently delete this skin pack from disk.");
}

std::optional<LibraryMove> moveOf(int key) {
    switch (key) {
    case Qt::Key_Left:
        return LibraryMove::previous;
    case Qt::Key_Right:
        return LibraryMove::next;
    case Qt::Key_Up:
        return LibraryMove::up;
    case Qt::Key_Down:
        return LibraryMove::down;
    case Qt::Key_Home:
        return LibraryMove::first;
    case Qt::Key_End:
        return LibraryMove::last;
    case Qt::Key_PageUp:
        return LibraryMove::pageUp;
    case Qt::Key_PageDown:
        return LibraryMove::pageDown;
    default:
        return std::nullopt;
    }
}

} // namespace

LibraryGrid::LibraryGrid(QWidget* parent)
    : QWidget(parent)
    , previews_([this] { update(); }) {
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(QStringLiteral("Widget Library"));
}

LibraryGrid::~LibraryGrid() = default;

void LibraryGrid::setItems(std::span<const WidgetLibraryItem> items) {
    groups_ = groupedItems(items);
    hovered_.reset();
    pressed_.reset();
    layOut();
    if (!isEmpty() && (focused_.group >= groups_.size() || focused_.card >= groups_[focused_.group].items.size()))
        focused_ = layout_.stop(0);
    updateGeometry();
    update();
}

void LibraryGrid::layOut() {
    std::vector<std::size_t> counts;
    for (const LibraryGroup& group : groups_)
        counts.push_back(group.items.size());
    layout_.setCardSize(WidgetPreviewCard::size(look()));
    layout_.layOut(counts, width());
}

int LibraryGrid::heightForWidth(int width) const {
    std::vector<std::size_t> counts;
    for (const LibraryGroup& group : groups_)
        counts.push_back(group.items.size());
    LibraryLayout layout;
    layout.setCardSize(WidgetPreviewCard::size(look()));
    layout.layOut(counts, width);
    return layout.height();
}

QSize LibraryGrid::sizeHint() const {
    constexpr int AnyWidth = LibraryLayout::cardWidth;
    return {AnyWidth, heightForWidth(std::max(width(), AnyWidth))};
}

/// A height here would be kept to at every width.
QSize LibraryGrid::minimumSizeHint() const {
    return {layout_.cardSize().width(), 0};
}

const CardLook& LibraryGrid::look() const {
    if (!look_)
        look_.emplace(font(), palette());
    return *look_;
}

void LibraryGrid::resizeEvent(QResizeEvent* event) {
    layOut();
    QWidget::resizeEvent(event);
}

void LibraryGrid::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        look_.reset();
    if (event->type() == QEvent::FontChange) {
        layOut();
        updateGeometry();
    }
    QWidget::changeEvent(event);
}

QRect LibraryGrid::buttonRect(LibraryStop stop) const {
    if (stop.card)
        return WidgetPreviewCard::buttonRect(layout_.card(stop.group, *stop.card), item(stop), look());
    const QRect header = layout_.header(stop.group);
    const int buttonWidth = look().textMetrics.horizontalAdvance(removeTitle()) + RemoveIcon + 30;
    return {header.right() + 1 - buttonWidth, header.center().y() - RemoveHeight / 2, buttonWidth, RemoveHeight};
}

QRect LibraryGrid::areaOf(LibraryStop stop) const {
    return stop.card ? layout_.card(stop.group, *stop.card) : layout_.header(stop.group);
}

std::optional<LibraryStop> LibraryGrid::buttonAt(QPoint position) const {
    const std::optional<LibraryStop> stop = layout_.at(position);
    return stop && buttonRect(*stop).contains(position) ? stop : std::nullopt;
}

ButtonState LibraryGrid::buttonState(LibraryStop stop) const {
    return {hovered_ == stop, pressed_ == stop, showsFocus_ && hasFocus() && focused_ == stop};
}

QSize LibraryGrid::previewBox() const {
    const QSize area = WidgetPreviewCard::previewRect(QRect(QPoint(), layout_.cardSize())).size();
    return ((QSizeF(area) - QSizeF(2 * PreviewPadding, 2 * PreviewPadding)) * devicePixelRatioF()).toSize();
}

void LibraryGrid::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QSize box = previewBox();
    for (const LibraryLayout::VisibleGroup& shown : layout_.visible(event->rect().top(), event->rect().bottom() + 1)) {
        if (layout_.header(shown.group).intersects(event->rect()))
            paintHeader(painter, shown.group);
        for (std::size_t i = shown.firstCard; i < shown.endCard; ++i) {
            const LibraryStop stop{shown.group, i};
            const QRect card = layout_.card(shown.group, i);
            if (!card.intersects(event->rect()))
                continue;
            static const QImage none;
            const PreviewCache::Data& snapshot = item(stop).snapshotData;
            WidgetPreviewCard::paint(
                painter, card, item(stop), snapshot ? previews_.find(snapshot, box) : &none, buttonState(stop), look());
        }
    }
    const QRect shown = visibleRegion().boundingRect();
    wantPreviews(layout_.visible(shown.top(), shown.bottom() + 1));
}

void LibraryGrid::wantPreviews(const std::vector<LibraryLayout::VisibleGroup>& shown) {
    std::vector<PreviewCache::Data> wanted;
    for (const LibraryLayout::VisibleGroup& group : shown) {
        for (std::size_t i = group.firstCard; i < group.endCard; ++i)
            wanted.push_back(item({group.group, i}).snapshotData);
    }
    previews_.want(std::move(wanted), previewBox());
}

void LibraryGrid::paintHeader(QPainter& painter, std::size_t group) const {
    const LibraryStop stop{group, std::nullopt};
    const QRect button = buttonRect(stop);
    const QRect header = layout_.header(group).adjusted(0, 0, -button.width() - Metrics::Unit, 0);
    painter.setFont(Type::heading(font()));
    painter.setPen(look().theme.text);
    painter.drawText(header, Qt::AlignVCenter | Qt::AlignLeft,
        QFontMetrics(painter.font()).elidedText(textOf(groups_[group].packageName), Qt::ElideRight, header.width()));
    const ButtonState state = buttonState(stop);
    const bool isActive = state.isHovered || state.isPressed || state.isFocused;
    const QColor color = look().theme.color(isActive ? Tone::error : Tone::dim);
    paintButton(painter, button, {}, isActive ? look().theme.tint(Tone::error) : QColor(Qt::transparent), color,
        {false, false, state.isFocused}, look());
    paintSymbol(painter, Symbol::trash,
        QRectF(button.left() + 10, button.center().y() - RemoveIcon / 2.0 + 0.5, RemoveIcon, RemoveIcon), color);
    painter.setFont(look().text);
    painter.setPen(color);
    painter.drawText(button.adjusted(RemoveIcon + 16, 0, 0, 0), Qt::AlignVCenter | Qt::AlignLeft, removeTitle());
}

void LibraryGrid::setHovered(std::optional<LibraryStop> stop) {
    if (hovered_ == stop)
        return;
    for (const std::optional<LibraryStop>& changed : {hovered_, stop}) {
        if (changed)
            update(areaOf(*changed));
    }
    hovered_ = stop;
    setCursor(stop ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void LibraryGrid::setFocused(LibraryStop stop) {
    update(areaOf(focused_));
    focused_ = stop;
    showsFocus_ = true;
    update(areaOf(stop));
    if (onReveal)
        onReveal(areaOf(stop));
    QAccessibleEvent event(this, QAccessible::Focus);
    event.setChild(static_cast<int>(layout_.index(stop)));
    QAccessible::updateAccessibility(&event);
}

void LibraryGrid::press(LibraryStop stop) {
    // What is called may change the items: it gets a copy.
    if (stop.card) {
        const WidgetLibraryItem pressed = item(stop);
        if (onRenderToggle)
            onRenderToggle(pressed);
    } else if (onRemovePack) {
        const LibraryGroup pressed = groups_[stop.group];
        onRemovePack(pressed);
    }
}

void LibraryGrid::mouseMoveEvent(QMouseEvent* event) {
    setHovered(buttonAt(event->position().toPoint()));
}

void LibraryGrid::leaveEvent(QEvent*) {
    setHovered(std::nullopt);
}

void LibraryGrid::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    showsFocus_ = false;
    pressed_ = buttonAt(event->position().toPoint());
    if (pressed_) {
        focused_ = *pressed_;
        update(areaOf(*pressed_));
    }
}

void LibraryGrid::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressed_)
        return;
    const LibraryStop stop = *pressed_;
    pressed_.reset();
    update(areaOf(stop));
    if (buttonAt(event->position().toPoint()) == stop)
        press(stop);
}

void LibraryGrid::keyPressEvent(QKeyEvent* event) {
    if (isEmpty())
        return QWidget::keyPressEvent(event);
    const bool presses
        = event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (presses) {
        if (!event->isAutoRepeat())
            press(focused_);
        return;
    }
    const std::optional<LibraryMove> move = moveOf(event->key());
    if (!move)
        return QWidget::keyPressEvent(event);
    const int rows = std::max(1, visibleRegion().boundingRect().height() / layout_.cardSize().height());
    setFocused(layout_.moved(focused_, *move, rows));
}

void LibraryGrid::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    showsFocus_ = event->reason() != Qt::MouseFocusReason;
    if (showsFocus_ && !isEmpty())
        setFocused(focused_);
}

void LibraryGrid::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    if (!isEmpty())
        update(areaOf(focused_));
}

bool LibraryGrid::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const std::optional<LibraryStop> stop = layout_.at(help->pos());
    const bool isRemove = stop && !stop->card && buttonRect(*stop).contains(help->pos());
    if (isRemove)
        QToolTip::showText(help->globalPos(), removeHelp(), this, buttonRect(*stop));
    else if (stop && stop->card)
        QToolTip::showText(help->globalPos(), textOf(item(*stop).path), this, areaOf(*stop));
    else
        QToolTip::hideText();
    return true;
}

PaintedParts::Part LibraryGrid::part(int index) const {
    const LibraryStop stop = layout_.stop(static_cast<std::size_t>(index));
    const bool isFocused = stop == focused_;
    if (!stop.card)
        return {QAccessible::Button, removeTitle() + QStringLiteral(" ") + textOf(groups_[stop.group].packageName),
            removeHelp(), buttonRect(stop), isFocused};
    const WidgetLibraryItem& card = item(stop);
    return {QAccessible::Button, WidgetPreviewCard::buttonTitle(card) + QStringLiteral(" ") + textOf(card.displayName),
        textOf(card.relativePath) + QStringLiteral(", ") + WidgetPreviewCard::statusText(card), areaOf(stop),
        isFocused};
}

int LibraryGrid::partAt(QPoint position) const {
    const std::optional<LibraryStop> stop = layout_.at(position);
    return stop ? static_cast<int>(layout_.index(*stop)) : -1;
}

void LibraryGrid::pressPart(int index) {
    press(layout_.stop(static_cast<std::size_t>(index)));
}

} // namespace Ostrel
