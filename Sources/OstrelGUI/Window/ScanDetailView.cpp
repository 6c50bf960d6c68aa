#include "OstrelGUI/Window/ScanDetailView.h"

#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/QtText.h"
#include "OstrelGUI/Window/RawOutputView.h"
#include "OstrelGUI/Window/RowList.h"
#include "OstrelGUI/Window/StatusIcon.h"
#include "OstrelGUI/Window/WindowStyle.h"

#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {

namespace {

using Success = std::shared_ptr<const ScannerViewModel::ScanSuccess>;
using Failure = std::shared_ptr<const ScannerViewModel::ScanFailure>;

RowList::Row findingRow(const CompatFinding& finding) {
    const StatusIcon icon = StatusIcon::of(finding.severity);
    RowList::Row row;
    row.symbol = icon.symbol;
    row.tone = icon.tone;
    row.heading = textOf(finding.category);
    if (finding.sectionName)
        row.badge = QStringLiteral("[%1]").arg(textOf(*finding.sectionName));
    row.text = textOf(finding.message);
    return row;
}

RowList::Row diagnosticRow(const Diagnostic& diagnostic) {
    const StatusIcon icon = StatusIcon::of(diagnostic.severity);
    RowList::Row row;
    row.symbol = icon.symbol;
    row.tone = icon.tone;
    row.text = textOf(diagnostic.description());
    return row;
}

/// A rows' box with nothing in it is its title alone.
template <typename Element, typename Make>
void fill(Card& card, RowList& list, const std::vector<Element>& elements, Make make) {
    std::vector<RowList::Row> rows;
    rows.reserve(elements.size());
    for (const Element& element : elements)
        rows.push_back(make(element));
    list.setVisible(!rows.empty());
    // The rows have room of their own above and below.
    constexpr int Padding = Metrics::CardPadding;
    const int bottom = rows.empty() ? Padding : Padding - RowListLayout::Padding;
    card.column().setContentsMargins(Padding, Padding, Padding, bottom);
    card.column().setSpacing(0);
    list.setRows(std::move(rows));
}

QWidget* makeScanning() {
    auto* widget = new QWidget;
    auto* row = new QHBoxLayout(widget);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(12);
    row->addWidget(new BusyIndicator(22));
    row->addWidget(makeDimLabel(QStringLiteral("Scanning…")), 1);
    return widget;
}

} // namespace

ScanDetailView::ScanDetailView()
    : Page(QString()) {
    buildHeader();
    scanning_ = makeScanning();
    column().addWidget(scanning_);
    error_ = new Card(QStringLiteral("Error"));
    errorMessage_ = makeLabel({});
    error_->column().addWidget(errorMessage_);
    column().addWidget(error_);
    buildSummary();
    buildDialect();
    findings_ = new Card(QStringLiteral("Findings"));
    findingRows_ = new RowList;
    findings_->column().addWidget(findingRows_);
    column().addWidget(findings_);
    diagnostics_ = new Card(QStringLiteral("Diagnostics"));
    diagnosticRows_ = new RowList;
    diagnosticRows_->setAccessibleName(QStringLiteral("Diagnostics"));
    diagnostics_->column().addWidget(diagnosticRows_);
    column().addWidget(diagnostics_);
    rawOutput_ = new RawOutputView;
    column().addWidget(rawOutput_);
    column().addStretch();
}

void ScanDetailView::buildHeader() {
    name_ = makeLabel({});
    name_->setFont(Type::title(font()));
    column().addWidget(name_);
    column().addSpacing(-Metrics::Unit);
    pathLabel_ = new ElidedLabel;
    column().addWidget(pathLabel_);
    column().addSpacing(Metrics::Unit);
}

void ScanDetailView::buildSummary() {
    summary_ = new Card(QStringLiteral("Summary"));
    toggle_ = new QPushButton;
    auto* head = new QHBoxLayout;
    head->addWidget(summary_->titleLabel(), 1);
    head->addWidget(toggle_);
    summary_->column().addLayout(head);
    auto* row = new QHBoxLayout;
    row->setSpacing(12);
    verdict_ = new Pill;
    row->addWidget(verdict_);
    const auto addCount = [row] {
        QLabel* label = makeDimLabel({});
        label->setWordWrap(false);
        // In a narrow window the counts give way.
        label->setMinimumWidth(1);
        row->addWidget(label);
        return label;
    };
    incompatible_ = addCount();
    warnings_ = addCount();
    row->addStretch();
    summary_->column().addLayout(row);
    column().addWidget(summary_);
    connect(toggle_, &QPushButton::clicked, this, [this] {
        const auto& action = isRunning_ ? onStop : onLaunch;
        if (action)
            action(std::string(path_));
    });
    setRunning(false);
}

void ScanDetailView::buildDialect() {
    dialect_ = new Card(QStringLiteral("Dialect"));
    dialectButton_ = new QPushButton;
    auto* head = new QHBoxLayout;
    head->addWidget(dialect_->titleLabel(), 1);
    head->addWidget(dialectButton_);
    dialect_->column().addLayout(head);
    dialectText_ = makeDimLabel({});
    dialect_->column().addWidget(dialectText_);
    column().addWidget(dialect_);
    connect(dialectButton_, &QPushButton::clicked, this, [this] {
        if (onDialect)
            onDialect(std::string(path_), shownDialect_ == Dialect::Full ? Dialect::Base : Dialect::Full);
    });
}

void ScanDetailView::setRunning(bool isRunning) {
    isRunning_ = isRunning;
    toggle_->setText(isRunning ? QStringLiteral("Stop Widget") : QStringLiteral("Render Widget"));
    setButtonKind(*toggle_, isRunning ? ButtonKind::normal : ButtonKind::suggested);
}

void ScanDetailView::showItem(const ScannerViewModel::ScanItem& item, Dialect dialect) {
    const bool isOther = id_ != item.id;
    if (!isOther && item.state.index() == state_.index() && dialect == shownDialect_)
        return;
    shownDialect_ = dialect;
    id_ = item.id;
    path_ = item.path;
    state_ = item.state;
    name_->setText(textOf(item.displayName()));
    setAccessibleName(name_->text());
    pathLabel_->setText(textOf(item.path));
    const auto* success = std::get_if<Success>(&item.state);
    const auto* failure = std::get_if<Failure>(&item.state);
    scanning_->setVisible(!success && !failure);
    error_->setVisible(failure);
    summary_->setVisible(success);
    dialect_->setVisible(success && (*success)->full);
    findings_->setVisible(success);
    diagnostics_->setVisible(success || failure);
    rawOutput_->setVisible(success);
    if (success)
        showSuccess(**success);
    else if (failure)
        showFailure(**failure);
    if (isOther)
        verticalScrollBar()->setValue(0);
}

void ScanDetailView::showSuccess(const ScannerViewModel::ScanSuccess& success) {
    showDiagnostics(success.diagnostics);
    if (success.full)
        showDialect(success);
    if (success.full && shownDialect_ == Dialect::Full) {
        showReport(success.full->report);
        rawOutput_->setTexts(success.full->formattedText, success.full->formattedJSON);
        return;
    }
    showReport(success.report);
    rawOutput_->setTexts(success.formattedText, success.formattedJSON);
}

void ScanDetailView::showDialect(const ScannerViewModel::ScanSuccess& success) {
    constexpr std::size_t Named = 3;
    const auto& things = success.full->beyondBase;
    const bool isFull = shownDialect_ == Dialect::Full;
    QString text;
    if (isFull) {
        text = QStringLiteral("This pack runs in the full dialect.");
    } else if (things.empty()) {
        text = QStringLiteral("Uses nothing beyond the base dialect.");
    } else {
        QStringList named;
        for (std::size_t i = 0; i < std::min(things.size(), Named); ++i)
            named << textOf(things[i]);
        text = (things.size() == 1 ? QStringLiteral("Uses one thing beyond the base dialect: ")
                                   : QStringLiteral("Uses %1 things beyond the base dialect: ").arg(things.size()))
            + named.join(QStringLiteral(", ")) + (things.size() > Named ? QStringLiteral(", …") : QStringLiteral("."));
    }
    dialectText_->setText(text);
    dialectButton_->setText(
        isFull ? QStringLiteral("Run with the base dialect") : QStringLiteral("Run with the full dialect"));
    setButtonKind(*dialectButton_, isFull || things.empty() ? ButtonKind::normal : ButtonKind::suggested);
}

void ScanDetailView::showReport(const CompatReport& report) {
    const StatusIcon icon = StatusIcon::of(report.verdict);
    verdict_->show(icon.symbol, verdictLabel(report.verdict), icon.tone);
    incompatible_->setText(QStringLiteral("%1 incompatible").arg(report.incompatibleCount()));
    warnings_->setText(QStringLiteral("%1 warnings").arg(report.warningCount()));
    findings_->titleLabel()->setText(QStringLiteral("Findings (%1)").arg(report.findings.size()));
    findingRows_->setAccessibleName(findings_->titleLabel()->text());
    fill(*findings_, *findingRows_, report.findings, findingRow);
}

void ScanDetailView::showFailure(const ScannerViewModel::ScanFailure& failure) {
    errorMessage_->setText(textOf(failure.message));
    showDiagnostics(failure.diagnostics);
}

void ScanDetailView::showDiagnostics(const std::vector<Diagnostic>& diagnostics) {
    fill(*diagnostics_, *diagnosticRows_, diagnostics, diagnosticRow);
}

} // namespace Ostrel
