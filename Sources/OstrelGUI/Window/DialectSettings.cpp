#include "OstrelGUI/Window/DialectSettings.h"

#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/PackLaunch.h"
#include "OstrelGUI/Window/QtText.h"
#include "OstrelGUI/Window/WindowStyle.h"

#include <QPushButton>
#include <QStringList>
#include <QVBoxLayout>

namespace Ostrel {

namespace {

QString describe(const PackChoice& choice) {
    QStringList parts;
    if (choice.dialect)
        parts << (*choice.dialect == Dialect::Full ? QStringLiteral("Full dialect") : QStringLiteral("Base dialect"));
    if (choice.permissions) {
        QStringList allowed;
        if (choice.permissions->scripts)
            allowed << QStringLiteral("scripts");
        if (choice.permissions->web)
            allowed << QStringLiteral("the web");
        if (choice.permissions->programs)
            allowed << QStringLiteral("programs");
        if (choice.permissions->files)
            allowed << QStringLiteral("files outside its folder");
        parts << (allowed.isEmpty() ? QStringLiteral("nothing further allowed")
                                    : QStringLiteral("may use %1").arg(allowed.join(QStringLiteral(", "))));
    }
    return parts.join(QStringLiteral("; "));
}

} // namespace

DialectSettings::DialectSettings(UserDefaults& defaults)
    : choices_(defaults) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2 * Metrics::Unit);
    auto* card = new Card(QStringLiteral("New Packs"));
    using NewPacks = PackChoices::NewPacks;
    addChoice(NewPacks::Ask, QStringLiteral("Ask"),
        QStringLiteral("Run in the base dialect until you choose the full dialect on the page of a scan."),
        card->column());
    addChoice(
        NewPacks::Base, QStringLiteral("Base dialect"), QStringLiteral("Small, exact and closed."), card->column());
    addChoice(NewPacks::Full, QStringLiteral("Full dialect"),
        QStringLiteral("What skins are usually written for. What a pack wants beyond drawing is asked first."),
        card->column());
    column->addWidget(card);
    packs_ = new Card(QStringLiteral("Packs"));
    column->addWidget(packs_);
    refresh();
}

void DialectSettings::addChoice(
    PackChoices::NewPacks choice, const QString& title, const QString& subtitle, QVBoxLayout& column) {
    auto* row = new OptionRow(title, subtitle);
    newPacks_[static_cast<std::size_t>(choice)] = row;
    column.addWidget(row);
    connect(row, &QAbstractButton::clicked, this, [this, choice] {
        choices_.setNewPacks(choice);
        refresh();
    });
}

void DialectSettings::refresh() {
    for (std::size_t i = 0; i < newPacks_.size(); ++i)
        newPacks_[i]->setChecked(i == static_cast<std::size_t>(choices_.newPacks()));
    // A click on a button of a row ends in here.
    if (rows_)
        rows_->deleteLater();
    rows_ = new QWidget;
    auto* column = new QVBoxLayout(rows_);
    column->setContentsMargins(0, 0, 0, 0);
    const auto choices = choices_.all();
    for (const auto& [root, choice] : choices)
        column->addWidget(makePackRow(root, choice));
    packs_->column().addWidget(rows_);
    packs_->setVisible(!choices.empty());
}

QWidget* DialectSettings::makePackRow(const std::string& root, const PackChoice& choice) {
    auto* widget = new QWidget;
    auto* row = new QHBoxLayout(widget);
    row->setContentsMargins(0, 0, 0, 0);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    QLabel* title = makeLabel(packTitle(root));
    title->setToolTip(textOf(root));
    texts->addWidget(title);
    texts->addWidget(makeDimLabel(describe(choice)));
    row->addLayout(texts, 1);
    auto* forget = new QPushButton(QStringLiteral("Take Back"));
    forget->setAccessibleDescription(QStringLiteral("Forgets what you said of %1").arg(title->text()));
    row->addWidget(forget);
    connect(forget, &QPushButton::clicked, this, [this, root] {
        choices_.forget(root);
        refresh();
    });
    return widget;
}

} // namespace Ostrel
