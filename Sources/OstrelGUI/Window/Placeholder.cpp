#include "OstrelGUI/Window/Placeholder.h"

#include "OstrelGUI/Window/Controls.h"

#include <QVBoxLayout>

namespace Ostrel {

namespace {

constexpr int SymbolSide = 72;
constexpr int TextWidth = 380;

} // namespace

Placeholder::Placeholder(Symbol symbol, const QString& title, const QString& text, QWidget* parent)
    : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Metrics::PageMargin, Metrics::PageMargin, Metrics::PageMargin, 2 * Metrics::PageMargin);
    column->setSpacing(Metrics::Unit);
    column->addStretch();
    column->addWidget(new SymbolView(symbol, SymbolSide, Tone::dim), 0, Qt::AlignHCenter);
    column->addSpacing(Metrics::Unit);
    QLabel* heading = makeLabel(title);
    heading->setFont(Type::title(font()));
    heading->setAlignment(Qt::AlignHCenter);
    column->addWidget(heading);
    QLabel* body = makeDimLabel(text);
    body->setAlignment(Qt::AlignHCenter);
    body->setFixedSize(TextWidth, body->heightForWidth(TextWidth));
    column->addWidget(body, 0, Qt::AlignHCenter);
    column->addStretch();
    setAccessibleName(title);
    setAccessibleDescription(text);
}

} // namespace Ostrel
