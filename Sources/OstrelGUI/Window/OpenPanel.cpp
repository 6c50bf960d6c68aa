#include "OstrelGUI/Window/OpenPanel.h"

#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/WindowStyle.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QFileIconProvider>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QToolButton>
#include <QTreeView>

namespace Ostrel {

namespace {

constexpr int PlacesWidth = 150;
constexpr int DateWidth = 180;

QString acceptTitle() {
    return QStringLiteral("Scan");
}

class PanelIcons final : public QFileIconProvider {
public:
    QIcon icon(IconType type) const override {
        return symbolIcon(type == File ? Symbol::document : Symbol::folder, type == File ? Tone::dim : Tone::accent);
    }
    QIcon icon(const QFileInfo& file) const override { return icon(file.isDir() ? Folder : File); }
};

} // namespace

OpenPanel::OpenPanel(QWidget* parent)
    : QFileDialog(parent) {
    setOption(DontUseNativeDialog);
    // No folders are made here.
    setOption(ReadOnly);
    setWindowTitle(QStringLiteral("Open"));
    setFileMode(ExistingFiles);
    setAcceptMode(AcceptOpen);
    setNameFilter(QStringLiteral("Skins (*.ini *.rmskin)"));
    setLabelText(Accept, acceptTitle());
    setWindowModality(Qt::WindowModal);
    resize(760, 500);
    hideWhatDoesNotBelong();
    dress();
    addMessage(QStringLiteral("Select a Rainmeter .ini skin file, .rmskin package, or a folder containing skins."));
}

/// Above everything else of the dialog's own grid.
void OpenPanel::addMessage(const QString& text) {
    auto* grid = qobject_cast<QGridLayout*>(layout());
    if (!grid)
        return;
    struct Cell {
        QLayoutItem* item = nullptr;
        int row = 0, column = 0, rows = 0, columns = 0;
    };
    std::vector<Cell> cells;
    while (grid->count() > 0) {
        Cell cell;
        grid->getItemPosition(0, &cell.row, &cell.column, &cell.rows, &cell.columns);
        cell.item = grid->takeAt(0);
        cells.push_back(cell);
    }
    QLabel* message = makeLabel(text);
    message->setFont(Type::strong(font()));
    message->setMinimumHeight(Metrics::ControlHeight);
    grid->addWidget(message, 0, 0, 1, -1);
    for (const Cell& cell : cells)
        grid->addItem(cell.item, cell.row + 1, cell.column, cell.rows, cell.columns, cell.item->alignment());
    setAccessibleDescription(text);
}

void OpenPanel::dress() {
    // A dialog does not own its provider.
    static PanelIcons icons;
    setIconProvider(&icons);
    const std::pair<const char*, Symbol> buttons[] = {{"backButton", Symbol::chevronLeft},
        {"forwardButton", Symbol::chevronRight}, {"toParentButton", Symbol::chevronUp}};
    for (const auto& [name, symbol] : buttons) {
        if (auto* button = findChild<QToolButton*>(QLatin1String(name)))
            button->setIcon(symbolIcon(symbol));
    }
    if (auto* tree = findChild<QTreeView*>(QStringLiteral("treeView"))) {
        constexpr int NameColumn = 0;
        constexpr int SizeColumn = 1;
        constexpr int TypeColumn = 2;
        constexpr int DateColumn = 3;
        tree->hideColumn(SizeColumn);
        tree->hideColumn(TypeColumn);
        tree->header()->setStretchLastSection(false);
        tree->header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
        tree->header()->resizeSection(DateColumn, DateWidth);
    }
    // Sizes of the splitter would not outlast the dialog's own.
    if (auto* places = findChild<QListView*>(QStringLiteral("sidebar")))
        places->setMinimumWidth(PlacesWidth);
}

void OpenPanel::hideWhatDoesNotBelong() {
    for (const char* name :
        {"fileTypeLabel", "fileTypeCombo", "newFolderButton", "listModeButton", "detailModeButton"}) {
        if (auto* part = findChild<QWidget*>(QLatin1String(name)))
            part->hide();
    }
    if (auto* buttons = findChild<QDialogButtonBox*>()) {
        // Some desktops put pictures on them, which are not ours.
        for (QAbstractButton* button : buttons->buttons())
            button->setIcon({});
        acceptButton_ = buttons->button(QDialogButtonBox::Open);
        if (acceptButton_)
            acceptButton_->installEventFilter(this);
    }
    // After the dialog's own reactions, which were connected before.
    const auto changed = [this] { updateAcceptButton(); };
    if (auto* list = findChild<QListView*>(QStringLiteral("listView"))) {
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this, changed);
        connect(list->selectionModel(), &QItemSelectionModel::currentChanged, this, changed);
    }
    if (auto* field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit")))
        connect(field, &QLineEdit::textChanged, this, changed);
}

/// While only folders are marked, the dialog disables its button, or would enter the folder and says so.
void OpenPanel::updateAcceptButton() {
    if (!acceptButton_)
        return;
    acceptButton_->setText(acceptTitle());
    if (!markedPaths().empty())
        acceptButton_->setEnabled(true);
}

bool OpenPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == acceptButton_ && event->type() == QEvent::EnabledChange && !acceptButton_->isEnabled())
        updateAcceptButton();
    return QFileDialog::eventFilter(watched, event);
}

std::vector<std::string> OpenPanel::markedPaths() const {
    std::vector<std::string> paths;
    const auto* list = findChild<QListView*>(QStringLiteral("listView"));
    if (!list || !list->selectionModel())
        return paths;
    for (const QModelIndex& index : list->selectionModel()->selectedRows())
        paths.push_back(index.data(QFileSystemModel::FilePathRole).toString().toStdString());
    return paths;
}

std::vector<std::string> OpenPanel::chosenPaths() const {
    std::vector<std::string> paths = markedPaths();
    if (!paths.empty())
        return paths;
    for (const QString& path : selectedFiles())
        paths.push_back(path.toStdString());
    return paths;
}

void OpenPanel::accept() {
    // What the dialog would do with a folder is to enter it.
    if (!chosenPaths().empty())
        QDialog::accept();
}

} // namespace Ostrel
