#pragma once

#include "OstrelGUI/Window/DeletePackage.h"

#include <QStackedWidget>
#include <QTimer>

#include <optional>
#include <vector>

namespace Ostrel {

class LibraryGrid;
class Page;
class Placeholder;
class WidgetLibrary;
struct WidgetLibraryItem;
class WindowDialogs;

/// The page of all known widgets.
class WidgetLibraryMenuView final : public QStackedWidget {
public:
    /// Both outlive the view.
    WidgetLibraryMenuView(WidgetLibrary& library, WindowDialogs& dialogs);

    /// After a change of the library. Many changes in one turn of the event loop are shown once, and none while the
    /// page does not show.
    void libraryDidChange();
    LibraryGrid& grid() { return *grid_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refresh();
    void reveal(const QRect& place);
    void askToDelete(DeletePackageRequest request);
    void performDelete();

    WidgetLibrary& library_;
    WindowDialogs& dialogs_;
    Page* page_;
    Placeholder* placeholder_;
    LibraryGrid* grid_;
    std::vector<WidgetLibraryItem> shown_;
    QTimer refreshTimer_;
    std::optional<DeletePackageRequest> deleteRequest_;
};

} // namespace Ostrel
