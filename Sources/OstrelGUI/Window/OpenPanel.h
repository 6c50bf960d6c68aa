#pragma once

#include <QFileDialog>

#include <string>
#include <vector>

class QAbstractButton;

namespace Ostrel {

/// Chooses skins, packages and folders, together if the user likes. The file dialogs of desktops take either files or
/// folders; this one takes what is marked, whatever it is. A double click still enters a folder.
class OpenPanel final : public QFileDialog {
public:
    explicit OpenPanel(QWidget* parent);

    /// What is marked in the list, or else typed in the field.
    std::vector<std::string> chosenPaths() const;

    void accept() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addMessage(const QString& text);
    void hideWhatDoesNotBelong();
    void dress();
    std::vector<std::string> markedPaths() const;
    void updateAcceptButton();

    QAbstractButton* acceptButton_ = nullptr;
};

} // namespace Ostrel
