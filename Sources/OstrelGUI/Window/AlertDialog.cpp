#include "OstrelGUI/Window/AlertDialog.h"

#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/WindowStyle.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace Ostrel {

namespace {

constexpr int DialogWidth = 420;

} // namespace

AlertDialog::AlertDialog(QWidget& window, const QString& title, const QString& text)
    : QDialog(&window)
    , column_(new QVBoxLayout(this))
    , buttons_(new QDialogButtonBox) {
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::WindowModal);
    column_->setContentsMargins(24, 24, 24, 20);
    column_->setSpacing(Metrics::Unit);
    QLabel* heading = makeLabel(title);
    heading->setFont(Type::heading(font()));
    column_->addWidget(heading);
    QLabel* body = makeDimLabel(text);
    body->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column_->addWidget(body);
    column_->addSpacing(2 * Metrics::Unit);
    column_->addWidget(buttons_);
    setAccessibleName(title);
    setAccessibleDescription(text);
}

void AlertDialog::showEvent(QShowEvent* event) {
    setFixedSize(DialogWidth, layout()->heightForWidth(DialogWidth));
    QDialog::showEvent(event);
}

QLineEdit& AlertDialog::addField(const QString& placeholder, const QString& value) {
    auto* field = new QLineEdit(value);
    field->setPlaceholderText(placeholder);
    field->setAccessibleName(windowTitle());
    field->selectAll();
    column_->insertSpacing(column_->count() - 2, Metrics::Unit);
    column_->insertWidget(column_->count() - 2, field);
    field->setFocus();
    return *field;
}

void AlertDialog::addWidget(QWidget& widget) {
    column_->insertWidget(column_->count() - 2, &widget);
}

QPushButton& AlertDialog::addAcceptButton(const QString& title) {
    QPushButton* button = buttons_->addButton(title, QDialogButtonBox::AcceptRole);
    connect(button, &QPushButton::clicked, this, &QDialog::accept);
    return *button;
}

QPushButton& AlertDialog::addCancelButton(const QString& title) {
    QPushButton* button = buttons_->addButton(title, QDialogButtonBox::RejectRole);
    connect(button, &QPushButton::clicked, this, &QDialog::reject);
    return *button;
}

} // namespace Ostrel
