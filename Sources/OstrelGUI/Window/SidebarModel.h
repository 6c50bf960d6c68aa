#pragma once

#include "OstrelGUI/Window/SidebarSelection.h"
#include "OstrelGUI/Window/StatusIcon.h"

#include <QAbstractListModel>

#include <optional>
#include <unordered_map>
#include <vector>

namespace Ostrel {

/// The rows of the sidebar: the section "Menus" with its four pages, the section "Scans" with the scans, or where there
/// are none a sentence instead.
class SidebarModel final : public QAbstractListModel {
public:
    enum class RowKind { section, menu, scan, emptyText };
    enum Role { KindRole = Qt::UserRole, SymbolRole, ToneRole, PathRole };

    /// The scans outlive the model. Of their changes it is told.
    explicit SidebarModel(const ScannerViewModel& scans);

    void scanListDidChange();
    void scanDidChange(ScannerViewModel::ScanID id);
    bool isScanning() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// Absent for rows that are no choice.
    std::optional<SidebarSelection> selection(int row) const;
    /// Negative when there is no such row.
    int row(const SidebarSelection& selection) const;
    /// The place of a scan's row in the list of scans.
    std::optional<std::size_t> scanOffset(int row) const;

private:
    RowKind kind(int row) const;
    QVariant scanData(std::size_t offset, int role) const;
    void removeGone();
    void appendNew();

    const ScannerViewModel& scans_;
    /// The scans as the view knows them.
    std::vector<ScannerViewModel::ScanID> ids_;
    std::unordered_map<ScannerViewModel::ScanID, std::size_t> offsets_;
    bool showsEmptyText_ = true;
};

} // namespace Ostrel
