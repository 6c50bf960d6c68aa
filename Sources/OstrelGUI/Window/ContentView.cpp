#include "OstrelGUI/Window/ContentView.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelGUI/WidgetLibrary.h"
#include "OstrelGUI/Window/DLLCompatibilityMenuView.h"
#include "OstrelGUI/Window/DropHint.h"
#include "OstrelGUI/Window/MediaPlayerMenuView.h"
#include "OstrelGUI/Window/PackLaunch.h"
#include "OstrelGUI/Window/PaintedParts.h"
#include "OstrelGUI/Window/Placeholder.h"
#include "OstrelGUI/Window/ScanDetailView.h"
#include "OstrelGUI/Window/SettingsMenuView.h"
#include "OstrelGUI/Window/SidebarView.h"
#include "OstrelGUI/Window/SkinSelection.h"
#include "OstrelGUI/Window/WidgetLibraryMenuView.h"
#include "OstrelGUI/Window/WindowDialogs.h"
#include "OstrelGUI/Window/WindowStyle.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPointer>
#include <QStackedWidget>

#include <algorithm>

namespace Ostrel {

ContentView::ContentView(Dependencies dependencies)
    : with_(std::move(dependencies))
    , theme_(with_.appearance)
    , sidebarModel_(with_.scans) {
    installPaintedParts();
    if (!with_.dialogs)
        with_.dialogs = makeWindowDialogs();
    packs_ = std::make_unique<PackLaunch>(*this, with_.defaults, with_.library, *with_.dialogs);
    buildWindow();
    observe();
}

ContentView::~ContentView() {
    with_.scans.onChange = nullptr;
    with_.library.onLibraryItemsChange = nullptr;
}

void ContentView::observe() {
    with_.scans.onChange = [this](const ScannerViewModel::Change& change) { scansDidChange(change); };
    with_.library.onLibraryItemsChange = [this] { libraryDidChange(); };
    sidebar_->onSelect = [this](const SidebarSelection& selection) { setSidebarSelection(selection); };
    sidebar_->onDelete = [this](std::span<const std::size_t> offsets) { removeScans(offsets); };
}

void ContentView::ensureOstrelAppIsActive() {
    if (isMinimized())
        showNormal();
    else
        show();
    raise();
    activateWindow();
}

void ContentView::presentOpenPanel() {
    if (hasOpenPanel_)
        return;
    ensureOstrelAppIsActive();
    hasOpenPanel_ = true;
    with_.dialogs->choosePaths(*this, [this](const std::optional<std::vector<std::string>>& chosen) {
        if (chosen)
            openSelection(*chosen);
        hasOpenPanel_ = false;
    });
}

void ContentView::openSelection(std::span<const std::string> paths) {
    scan(paths, ShowSkin::Yes);
}

void ContentView::listSelection(std::span<const std::string> paths) {
    scan(paths, ShowSkin::No);
}

void ContentView::scan(std::span<const std::string> paths, ShowSkin showSkin) {
    std::vector<std::string> selected;
    std::copy_if(paths.begin(), paths.end(), std::back_inserter(selected), SkinSelection::isValidSelection);
    if (selected.empty())
        return;
    const bool launches = showSkin == ShowSkin::Yes && SkinSelection::shouldAutoRenderSelection(selected);
    with_.scans.scan(
        selected, [window = QPointer(this), launches](const std::vector<std::string>& expanded, bool areListed) {
            if (!window)
                return;
            auto& library = window->with_.library;
            library.registerDiscovered(expanded);
            if (const auto selection = window->with_.scans.selection(); selection && areListed)
                window->setSidebarSelection(SidebarSelection::ofScan(*selection));
            if (!launches)
                return;
            for (const std::string& path : expanded)
                window->packs_->launch(path);
        });
}

void ContentView::clearScans() {
    with_.scans.clearAll();
    if (sidebarSelection_ && sidebarSelection_->isScan())
        setSidebarSelection(std::nullopt);
}

void ContentView::removeScans(std::span<const std::size_t> offsets) {
    const auto& items = with_.scans.items();
    const bool removesShown = std::any_of(offsets.begin(), offsets.end(), [&](std::size_t offset) {
        return offset < items.size() && sidebarSelection_ == SidebarSelection::ofScan(items[offset].id);
    });
    with_.scans.remove(offsets);
    if (!removesShown)
        return;
    const auto next = with_.scans.selection();
    setSidebarSelection(next ? std::optional(SidebarSelection::ofScan(*next)) : std::nullopt);
}

void ContentView::setSidebarSelection(std::optional<SidebarSelection> selection) {
    if (sidebarSelection_ != selection) {
        sidebarSelection_ = selection;
        const bool isScan = selection && selection->isScan();
        with_.scans.setSelection(isScan ? std::optional(selection->scan) : std::nullopt);
    }
    sidebar_->showSelection(sidebarSelection_);
    showDetail();
}

void ContentView::scansDidChange(const ScannerViewModel::Change& change) {
    if (change.list) {
        sidebar_->scanListDidChange();
        sidebar_->showSelection(sidebarSelection_);
    }
    if (change.state)
        sidebar_->scanDidChange(*change.state);
    const bool concernsDetail
        = change.list || (change.state && sidebarSelection_ == SidebarSelection::ofScan(*change.state));
    if (concernsDetail && sidebarSelection_ && sidebarSelection_->isScan())
        showDetail();
}

void ContentView::libraryDidChange() {
    if (library_)
        library_->libraryDidChange();
    if (scanDetail_ && scanDetail_->isVisible())
        scanDetail_->setRunning(isRunning(scanDetail_->path()));
}

const ScannerViewModel::ScanItem* ContentView::selectedScan() const {
    if (!sidebarSelection_ || !sidebarSelection_->isScan())
        return nullptr;
    const ScannerViewModel::ScanItem* item = with_.scans.selectedItem();
    return item && item->id == sidebarSelection_->scan ? item : nullptr;
}

bool ContentView::isRunning(const std::string& path) const {
    const std::string standard = standardizedPath(path);
    const auto& items = with_.library.libraryItems();
    return std::any_of(items.begin(), items.end(),
        [&](const WidgetLibraryItem& item) { return item.isRunning && item.path == standard; });
}

void ContentView::showDetail() {
    if (!sidebarSelection_ || (sidebarSelection_->isScan() && !selectedScan())) {
        detail_->setCurrentWidget(placeholder_);
        return;
    }
    QWidget* shown = page(*sidebarSelection_);
    if (const auto* scan = selectedScan()) {
        showScan(*scan);
    }
    detail_->setCurrentWidget(shown);
}

void ContentView::showScan(const ScannerViewModel::ScanItem& scan) {
    scanDetail_->setRunning(isRunning(scan.path));
    scanDetail_->showItem(scan, packs_->choices().dialectOf(scan.path));
}

void ContentView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        theme_.follow();
    if (event->type() == QEvent::PaletteChange)
        applyStyleSheet();
    QWidget::changeEvent(event);
}

void ContentView::dragEnterEvent(QDragEnterEvent* event) {
    const std::vector<std::string> paths = droppedPaths(*event->mimeData());
    if (hasOpenPanel_ || std::none_of(paths.begin(), paths.end(), SkinSelection::isValidSelection))
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    dropHint_->raise();
    dropHint_->show();
}

void ContentView::dragLeaveEvent(QDragLeaveEvent*) {
    dropHint_->hide();
}

void ContentView::dropEvent(QDropEvent* event) {
    dropHint_->hide();
    event->setDropAction(Qt::CopyAction);
    event->accept();
    openSelection(droppedPaths(*event->mimeData()));
}

void ContentView::resizeEvent(QResizeEvent* event) {
    dropHint_->setGeometry(rect());
    QWidget::resizeEvent(event);
}

void ContentView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (onVisibilityChange && !event->spontaneous())
        onVisibilityChange(true);
}

void ContentView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (onVisibilityChange && !event->spontaneous())
        onVisibilityChange(false);
}

} // namespace Ostrel
