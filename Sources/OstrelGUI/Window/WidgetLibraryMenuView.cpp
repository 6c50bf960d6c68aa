#include "OstrelGUI/Window/WidgetLibraryMenuView.h"

#include "OstrelGUI/WidgetLibrary.h"
#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/LibraryGrid.h"
#include "OstrelGUI/Window/Page.h"
#include "OstrelGUI/Window/Placeholder.h"
#include "OstrelGUI/Window/QtText.h"
#include "OstrelGUI/Window/WindowDialogs.h"

#include <QPointer>
#include <QVBoxLayout>

#include <string>

namespace Ostrel {

WidgetLibraryMenuView::WidgetLibraryMenuView(WidgetLibrary& library, WindowDialogs& dialogs)
    : library_(library)
    , dialogs_(dialogs)
    , page_(new Page(
          QStringLiteral("Widget Library"), QStringLiteral("Rendered and unrendered skins are grouped by package.")))
    , placeholder_(new Placeholder(Symbol::squareGrid, QStringLiteral("No Loaded Widgets Yet"),
          QStringLiteral("Open a skin or folder, then widgets will appear here (rendered and unrendered).")))
    , grid_(new LibraryGrid) {
    page_->setFillsWidth(true);
    page_->column().addWidget(grid_);
    page_->column().addStretch();
    addWidget(placeholder_);
    addWidget(page_);
    refreshTimer_.setSingleShot(true);
    connect(&refreshTimer_, &QTimer::timeout, this, [this] { refresh(); });
    grid_->onRenderToggle = [this](const WidgetLibraryItem& item) {
        if (item.isRendered)
            library_.unrenderWidget(item.path);
        else
            library_.renderWidget(item.path);
    };
    grid_->onRemovePack = [this](const LibraryGroup& group) { askToDelete(DeletePackageRequest::make(group)); };
    grid_->onReveal = [this](const QRect& place) { reveal(place); };
}

void WidgetLibraryMenuView::showEvent(QShowEvent* event) {
    refresh();
    QStackedWidget::showEvent(event);
}

void WidgetLibraryMenuView::libraryDidChange() {
    if (isVisible() && !refreshTimer_.isActive())
        refreshTimer_.start(0);
}

void WidgetLibraryMenuView::refresh() {
    // The library tells of every change of a session, most of which no card shows.
    if (shown_ != library_.libraryItems()) {
        shown_ = library_.libraryItems();
        grid_->setItems(shown_);
    }
    setCurrentWidget(shown_.empty() ? static_cast<QWidget*>(placeholder_) : page_);
}

void WidgetLibraryMenuView::reveal(const QRect& place) {
    const QPoint corner = grid_->mapTo(page_->widget(), place.topLeft());
    page_->ensureVisible(corner.x(), corner.y(), 0, Metrics::Unit);
    page_->ensureVisible(corner.x(), corner.y() + place.height(), 0, Metrics::Unit);
}

void WidgetLibraryMenuView::askToDelete(DeletePackageRequest request) {
    deleteRequest_ = std::move(request);
    dialogs_.confirmDelete(*window(), QStringLiteral("Remove Skin Pack?"), deleteConfirmationText(&*deleteRequest_),
        [this](bool confirmed) {
            if (confirmed)
                performDelete();
            else
                deleteRequest_.reset();
        });
}

void WidgetLibraryMenuView::performDelete() {
    if (!deleteRequest_)
        return;
    const std::vector<std::string> roots = std::move(deleteRequest_->rootPaths);
    deleteRequest_.reset();
    library_.deletePackage(roots, [view = QPointer(this)](std::optional<std::string> failure) {
        if (!view || !failure)
            return;
        view->dialogs_.alert(*view->window(), QStringLiteral("Unable to Remove Skin Pack"),
            failure->empty() ? QStringLiteral("An unexpected error occurred.") : textOf(*failure));
    });
}

} // namespace Ostrel
