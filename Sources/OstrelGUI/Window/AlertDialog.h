#pragma once

#include <QDialog>

class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace Ostrel {

/// A short question: a title, what it means, perhaps a field, and buttons. Deletes itself when it closes.
class AlertDialog final : public QDialog {
public:
    AlertDialog(QWidget& window, const QString& title, const QString& text);

    /// Between the text and the buttons.
    QLineEdit& addField(const QString& placeholder, const QString& value);
    /// Between the text and the buttons, one below the other.
    void addWidget(QWidget& widget);
    /// Closes as accepted.
    QPushButton& addAcceptButton(const QString& title);
    QPushButton& addCancelButton(const QString& title);

protected:
    void showEvent(QShowEvent* event) override;

private:
    QVBoxLayout* column_;
    QDialogButtonBox* buttons_;
};

} // namespace Ostrel
