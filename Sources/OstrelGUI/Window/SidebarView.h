#pragma once

#include "OstrelGUI/Window/SidebarModel.h"

#include <QListView>
#include <QTimer>

#include <functional>
#include <optional>

namespace Ostrel {

/// The list at the window's leading edge.
class SidebarView final : public QListView {
public:
    /// The model outlives the view.
    explicit SidebarView(SidebarModel& model);

    /// Absent: nothing is marked. Tells nobody.
    void showSelection(const std::optional<SidebarSelection>& selection);
    /// The list of scans, or the state of one has changed.
    void scanListDidChange();
    void scanDidChange(ScannerViewModel::ScanID id);

    /// What the user has chosen.
    std::function<void(const SidebarSelection&)> onSelect;
    /// Scans that the user wants gone, by their places in the list of scans.
    std::function<void(std::span<const std::size_t>)> onDelete;

protected:
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void deleteRow(int row);
    void turnWhileScanning();

    SidebarModel& model_;
    /// While the rows or the mark change for other reasons than the user's choice.
    bool isShowing_ = false;
    /// Turns the progress indicators while scans run.
    QTimer busyTimer_;
};

} // namespace Ostrel
