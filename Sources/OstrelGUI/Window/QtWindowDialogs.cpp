#include "OstrelGUI/Window/AlertDialog.h"
#include "OstrelGUI/Window/OpenPanel.h"
#include "OstrelGUI/Window/WindowDialogs.h"
#include "OstrelGUI/Window/WindowStyle.h"

#include <QLineEdit>
#include <QPushButton>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

namespace {

class QtWindowDialogs final : public WindowDialogs {
public:
    void choosePaths(QWidget& window, std::function<void(std::optional<std::vector<std::string>>)> done) override {
        auto* panel = new OpenPanel(&window);
        panel->setAttribute(Qt::WA_DeleteOnClose);
        QObject::connect(panel, &QDialog::finished, &window, [panel, done = std::move(done)](int result) {
            done(result == QDialog::Accepted ? std::optional(panel->chosenPaths()) : std::nullopt);
        });
        panel->open();
    }

    void confirmDelete(
        QWidget& window, const QString& title, const QString& text, std::function<void(bool)> done) override {
        auto* dialog = new AlertDialog(window, title, text);
        QPushButton& cancel = dialog->addCancelButton(QStringLiteral("Cancel"));
        setButtonKind(dialog->addAcceptButton(QStringLiteral("Delete")), ButtonKind::destructive);
        // Return alone must not delete anything.
        cancel.setDefault(true);
        cancel.setFocus();
        QObject::connect(dialog, &QDialog::finished, &window,
            [done = std::move(done)](int result) { done(result == QDialog::Accepted); });
        dialog->open();
    }

    void alert(QWidget& window, const QString& title, const QString& text) override {
        auto* dialog = new AlertDialog(window, title, text);
        dialog->addAcceptButton(QStringLiteral("OK")).setDefault(true);
        dialog->open();
    }

    void ask(QWidget& window, const Prompt& prompt, std::function<void(std::optional<QString>)> done) override {
        auto* dialog = new AlertDialog(window, prompt.title, prompt.text);
        QLineEdit* field = &dialog->addField(prompt.placeholder, prompt.value);
        QPushButton& accept = dialog->addAcceptButton(QStringLiteral("OK"));
        setButtonKind(accept, ButtonKind::suggested);
        accept.setDefault(true);
        dialog->addCancelButton(QStringLiteral("Cancel"));
        QObject::connect(dialog, &QDialog::finished, &window, [field, done = std::move(done)](int result) {
            done(result == QDialog::Accepted ? std::optional(field->text()) : std::nullopt);
        });
        dialog->open();
    }
};

} // namespace

std::unique_ptr<WindowDialogs> makeWindowDialogs() {
    return std::make_unique<QtWindowDialogs>();
}

} // namespace Ostrel
