#include "OstrelGUI/Window/SidebarView.h"

#include "OstrelGUI/Window/Controls.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QStyledItemDelegate>

#include <optional>

namespace Ostrel {

namespace {

constexpr int RowHeight = 36;
constexpr int SectionHeight = 38;
constexpr int Margin = 8;
constexpr int IconSide = 18;

/// One `SidebarRow`: its `StatusIcon` or picture, and its name.
class SidebarDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        switch (kind(index)) {
        case SidebarModel::RowKind::section:
            return {0, SectionHeight};
        case SidebarModel::RowKind::emptyText:
            return {0, emptyTextHeight(option, index)};
        case SidebarModel::RowKind::menu:
        case SidebarModel::RowKind::scan:
            break;
        }
        return {0, RowHeight};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const Theme theme = Theme::from(option.palette);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QString text = index.data().toString();
        const QRect inner = option.rect.adjusted(2 * Margin, 0, -2 * Margin, 0);
        switch (kind(index)) {
        case SidebarModel::RowKind::section:
            painter->setFont(Type::strong(Type::caption(option.font)));
            painter->setPen(theme.dim);
            painter->drawText(inner.adjusted(0, 0, 0, -6), Qt::AlignLeft | Qt::AlignBottom, text);
            break;
        case SidebarModel::RowKind::emptyText:
            painter->setFont(option.font);
            painter->setPen(theme.dim);
            painter->drawText(inner.adjusted(0, 6, 0, 0), Qt::TextWordWrap | Qt::AlignTop | Qt::AlignLeft, text);
            break;
        case SidebarModel::RowKind::menu:
        case SidebarModel::RowKind::scan:
            paintRow(*painter, theme, option, index, text);
        }
        painter->restore();
    }

private:
    static SidebarModel::RowKind kind(const QModelIndex& index) {
        return static_cast<SidebarModel::RowKind>(index.data(SidebarModel::KindRole).toInt());
    }

    static int emptyTextHeight(const QStyleOptionViewItem& option, const QModelIndex& index) {
        const QWidget* view = option.widget;
        const int width = (view ? view->width() : 200) - 4 * Margin;
        const QRect wrapped = QFontMetrics(option.font)
                                  .boundingRect(QRect(0, 0, width, 1000), Qt::TextWordWrap, index.data().toString());
        return wrapped.height() + 2 * Margin;
    }

    static void paintRow(QPainter& painter, const Theme& theme, const QStyleOptionViewItem& option,
        const QModelIndex& index, const QString& text) {
        const QRectF ground = QRectF(option.rect).adjusted(Margin, 1, -Margin, -1);
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        if (isSelected || option.state.testFlag(QStyle::State_MouseOver)) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(isSelected ? theme.tint(Tone::accent) : theme.hover);
            painter.drawRoundedRect(ground, Metrics::ControlRadius, Metrics::ControlRadius);
        }
        const auto symbol = static_cast<Symbol>(index.data(SidebarModel::SymbolRole).toInt());
        Tone tone = static_cast<Tone>(index.data(SidebarModel::ToneRole).toInt());
        if (tone == Tone::normal && isSelected)
            tone = Tone::accent;
        const QRectF icon(ground.left() + 10, ground.center().y() - IconSide / 2.0, IconSide, IconSide);
        if (symbol == Symbol::none)
            BusyIndicator::paint(painter, icon.adjusted(1, 1, -1, -1), theme.accent, BusyIndicator::currentTurn());
        else
            paintSymbol(painter, symbol, icon, theme.color(tone));
        const QRectF label = ground.adjusted(IconSide + 20, 0, -Margin, 0);
        painter.setFont(isSelected ? Type::strong(option.font) : option.font);
        painter.setPen(theme.text);
        painter.drawText(label, Qt::AlignVCenter | Qt::AlignLeft,
            QFontMetrics(painter.font()).elidedText(text, Qt::ElideRight, static_cast<int>(label.width())));
        const bool isFocused
            = option.state.testFlag(QStyle::State_HasFocus) && option.state.testFlag(QStyle::State_KeyboardFocusChange);
        if (isFocused)
            paintFocusRing(painter, ground, Metrics::ControlRadius, theme);
    }
};

} // namespace

SidebarView::SidebarView(SidebarModel& model)
    : model_(model) {
    setModel(&model);
    setItemDelegate(new SidebarDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setMouseTracking(true);
    viewport()->setAutoFillBackground(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerPixel);
    setEditTriggers(NoEditTriggers);
    setAccessibleName(QStringLiteral("Ostrel"));
    busyTimer_.setInterval(BusyIndicator::FrameMilliseconds);
    connect(&busyTimer_, &QTimer::timeout, this, [this] {
        viewport()->update();
        if (!model_.isScanning())
            busyTimer_.stop();
    });
}

void SidebarView::showSelection(const std::optional<SidebarSelection>& selection) {
    const int row = selection ? model_.row(*selection) : -1;
    isShowing_ = true;
    if (row < 0) {
        selectionModel()->clear();
    } else {
        setCurrentIndex(model_.index(row));
        scrollTo(model_.index(row));
    }
    isShowing_ = false;
}

void SidebarView::scanListDidChange() {
    isShowing_ = true;
    model_.scanListDidChange();
    isShowing_ = false;
    turnWhileScanning();
}

void SidebarView::scanDidChange(ScannerViewModel::ScanID id) {
    model_.scanDidChange(id);
}

void SidebarView::turnWhileScanning() {
    if (!busyTimer_.isActive() && model_.isScanning())
        busyTimer_.start();
}

void SidebarView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QListView::selectionChanged(selected, deselected);
    // Not the current row: merely getting the keyboard makes the first one current.
    const auto selection = model_.selection(selected.isEmpty() ? -1 : selected.first().top());
    if (!isShowing_ && selection && onSelect)
        onSelect(*selection);
}

void SidebarView::deleteRow(int row) {
    const auto offset = model_.scanOffset(row);
    if (offset && onDelete)
        onDelete(std::span(&*offset, 1));
}

void SidebarView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Delete)
        return deleteRow(currentIndex().row());
    QListView::keyPressEvent(event);
}

void SidebarView::contextMenuEvent(QContextMenuEvent* event) {
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = isByKey ? currentIndex() : indexAt(event->pos());
    if (!index.isValid() || !model_.scanOffset(index.row()))
        return;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const QPersistentModelIndex target(index);
    QAction* remove = menu->addAction(symbolIcon(Symbol::trash), QStringLiteral("Delete"));
    connect(remove, &QAction::triggered, this, [this, target] { deleteRow(target.isValid() ? target.row() : -1); });
    menu->popup(isByKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

void SidebarView::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    // Rows are as high at any width, but for the sentence of an empty list, which wraps.
    if (!model_.scanOffset(model_.rowCount() - 1))
        scheduleDelayedItemsLayout();
}

} // namespace Ostrel
