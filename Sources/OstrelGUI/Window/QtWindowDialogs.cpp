#include "OstrelGUI/Window/AlertDialog.h"
#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/OpenPanel.h"
#include "OstrelGUI/Window/WindowDialogs.h"
#include "OstrelGUI/Window/WindowStyle.h"

#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

namespace {

/// A few lines of what is wanted; how many more there are.
QLabel* makeItemList(const QStringList& items) {
    constexpr int ShownItems = 6;
    constexpr int LongestItem = 60;
    QStringList shown;
    for (const auto& item : items.first(std::min<qsizetype>(items.size(), ShownItems)))
        shown << (item.size() > LongestItem ? item.left(20) + QStringLiteral("…") + item.right(LongestItem - 21)
                                            : item);
    if (items.size() > ShownItems)
        shown << QStringLiteral("and %1 more").arg(items.size() - ShownItems);
    QLabel* label = makeDimLabel(shown.join(QLatin1Char('\n')));
    label->setToolTip(items.join(QLatin1Char('\n')));
    return label;
}

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

    void askPermissions(QWidget& window, const PermissionQuestion& question,
        std::function<void(std::optional<std::vector<bool>>)> done) override {
        auto* dialog = new AlertDialog(window, question.title, question.text);
        std::vector<SwitchRow*> switches;
        for (const auto& kind : question.kinds) {
            auto* row = new SwitchRow(kind.title);
            row->setChecked(kind.isSuggested);
            row->setAccessibleDescription(kind.items.join(QStringLiteral(", ")));
            dialog->addWidget(*row);
            dialog->addWidget(*makeItemList(kind.items));
            switches.push_back(row);
        }
        QPushButton& accept = dialog->addAcceptButton(QStringLiteral("Allow Selected"));
        setButtonKind(accept, ButtonKind::suggested);
        accept.setDefault(true);
        dialog->addCancelButton(QStringLiteral("Not Now"));
        QObject::connect(dialog, &QDialog::finished, &window, [switches, done = std::move(done)](int result) {
            if (result != QDialog::Accepted) {
                done(std::nullopt);
                return;
            }
            std::vector<bool> allowed;
            for (const auto* row : switches)
                allowed.push_back(row->isChecked());
            done(allowed);
        });
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
