#include "OstrelGUI/Window/DLLCompatibilityMenuView.h"

#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/DLLCompatibilityCatalog.h"
#include "OstrelGUI/Window/QtText.h"
#include "OstrelGUI/Window/RowList.h"

#include <QVBoxLayout>

#include <algorithm>
#include <vector>

namespace Ostrel {

namespace {

RowList::Row rowFor(const DLLCompatibilityLayer& layer) {
    RowList::Row row;
    row.heading = textOf(layer.name);
    row.text = textOf(layer.notes);
    row.symbol = Symbol::shippingBox;
    row.tone = layer.isWorking ? Tone::success : Tone::dim;
    row.status = layer.isWorking ? QStringLiteral("Working") : QStringLiteral("Not working");
    row.statusSymbol = layer.isWorking ? Symbol::checkmarkCircle : Symbol::xmarkCircle;
    return row;
}

Card* makeSummary() {
    const auto layers = DLLCompatibilityCatalog::layers();
    const auto working = std::count_if(layers.begin(), layers.end(), [](const auto& layer) { return layer.isWorking; });
    const auto total = static_cast<std::ptrdiff_t>(layers.size());
    auto* card = new Card;
    auto* row = new QHBoxLayout;
    row->setSpacing(Metrics::Unit);
    const auto add = [row](const QString& format, std::ptrdiff_t count, Symbol symbol, Tone tone) {
        auto* pill = new Pill;
        pill->show(symbol, format.arg(count), tone);
        row->addWidget(pill);
    };
    add(QStringLiteral("%1 Working"), working, Symbol::checkmarkCircle, Tone::success);
    add(QStringLiteral("%1 Not working"), total - working, Symbol::xmarkCircle, Tone::dim);
    row->addStretch();
    add(QStringLiteral("%1 Total"), total, Symbol::none, Tone::normal);
    card->column().addLayout(row);
    return card;
}

} // namespace

DLLCompatibilityMenuView::DLLCompatibilityMenuView()
    : Page(QStringLiteral("DLL Compatibility Layers"),
        QStringLiteral(
            "Ostrel tracks Windows Rainmeter plugins here. Selected native compatibility layers are available "
            "without loading DLL binaries.")) {
    column().addWidget(makeSummary());
    std::vector<RowList::Row> rows;
    for (const DLLCompatibilityLayer& layer : DLLCompatibilityCatalog::layers())
        rows.push_back(rowFor(layer));
    auto* list = new RowList(RowList::Shape::cards);
    list->setAccessibleName(QStringLiteral("DLL Compatibility Layers"));
    list->setRows(std::move(rows));
    column().addWidget(list);
    column().addStretch();
}

} // namespace Ostrel
