#include "OstrelGUI/Window/Page.h"

#include "OstrelGUI/Window/Controls.h"

#include <QVBoxLayout>

#include <algorithm>

namespace Ostrel {

Page::Page(const QString& title, const QString& subtitle, QWidget* parent)
    : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(title);
    setFocusPolicy(Qt::NoFocus);
    auto* content = new QWidget;
    column_ = new QVBoxLayout(content);
    column_->setSpacing(2 * Metrics::Unit);
    if (!title.isEmpty()) {
        QLabel* heading = makeLabel(title);
        heading->setFont(Type::title(font()));
        column_->addWidget(heading);
    }
    if (!subtitle.isEmpty()) {
        column_->addSpacing(-Metrics::Unit);
        column_->addWidget(makeDimLabel(subtitle));
        column_->addSpacing(Metrics::Unit);
    }
    setWidget(content);
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    adjustMargins();
}

void Page::setFillsWidth(bool fills) {
    fillsWidth_ = fills;
    adjustMargins();
}

void Page::resizeEvent(QResizeEvent* event) {
    adjustMargins();
    QScrollArea::resizeEvent(event);
}

void Page::adjustMargins() {
    const int spare = fillsWidth_ ? 0 : (viewport()->width() - Metrics::ReadingWidth) / 2;
    const int side = std::max(Metrics::PageMargin, spare);
    column_->setContentsMargins(side, Metrics::Unit, side, Metrics::PageMargin);
}

} // namespace Ostrel
