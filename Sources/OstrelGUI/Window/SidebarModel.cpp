#include "OstrelGUI/Window/SidebarModel.h"

#include "OstrelGUI/Window/QtText.h"

#include <array>

namespace Ostrel {

namespace {

struct Menu {
    const char* title;
    Symbol symbol;
    SidebarSelection::Kind kind;
};

constexpr std::array<Menu, 4> Menus{{
    {"Widget Library", Symbol::squareGrid, SidebarSelection::Kind::widgetLibrary},
    {"DLL Compatibility Layers", Symbol::shippingBox, SidebarSelection::Kind::dllCompatibilityLayers},
    {"Media Player", Symbol::musicNote, SidebarSelection::Kind::mediaPlayer},
    {"Settings", Symbol::gear, SidebarSelection::Kind::settings},
}};

constexpr int FirstMenu = 1;
constexpr int ScansSection = FirstMenu + static_cast<int>(Menus.size());
constexpr int FirstScan = ScansSection + 1;

} // namespace

SidebarModel::SidebarModel(const ScannerViewModel& scans)
    : scans_(scans) {
    appendNew();
}

/// Scans keep their order, and new ones come last: what is gone goes in runs, so that a selection stays where it is.
void SidebarModel::scanListDidChange() {
    removeGone();
    appendNew();
}

void SidebarModel::removeGone() {
    std::unordered_map<ScannerViewModel::ScanID, bool> present;
    for (const auto& item : scans_.items())
        present.emplace(item.id, true);
    std::size_t end = ids_.size();
    while (end > 0) {
        if (present.contains(ids_[end - 1])) {
            --end;
            continue;
        }
        std::size_t begin = end - 1;
        while (begin > 0 && !present.contains(ids_[begin - 1]))
            --begin;
        beginRemoveRows({}, FirstScan + static_cast<int>(begin), FirstScan + static_cast<int>(end) - 1);
        ids_.erase(ids_.begin() + static_cast<std::ptrdiff_t>(begin), ids_.begin() + static_cast<std::ptrdiff_t>(end));
        endRemoveRows();
        end = begin;
    }
    if (ids_.empty() && !showsEmptyText_) {
        beginInsertRows({}, FirstScan, FirstScan);
        showsEmptyText_ = true;
        endInsertRows();
    }
}

void SidebarModel::appendNew() {
    const auto& items = scans_.items();
    if (items.size() > ids_.size()) {
        if (showsEmptyText_) {
            beginRemoveRows({}, FirstScan, FirstScan);
            showsEmptyText_ = false;
            endRemoveRows();
        }
        beginInsertRows({}, FirstScan + static_cast<int>(ids_.size()), FirstScan + static_cast<int>(items.size()) - 1);
        for (std::size_t i = ids_.size(); i < items.size(); ++i)
            ids_.push_back(items[i].id);
        endInsertRows();
    }
    offsets_.clear();
    for (std::size_t i = 0; i < ids_.size(); ++i)
        offsets_.emplace(ids_[i], i);
}

void SidebarModel::scanDidChange(ScannerViewModel::ScanID id) {
    const int changed = row(SidebarSelection::ofScan(id));
    if (changed >= 0)
        emit dataChanged(index(changed), index(changed));
}

int SidebarModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : FirstScan + static_cast<int>(ids_.size()) + (showsEmptyText_ ? 1 : 0);
}

SidebarModel::RowKind SidebarModel::kind(int row) const {
    if (row == 0 || row == ScansSection)
        return RowKind::section;
    if (row < ScansSection)
        return RowKind::menu;
    return ids_.empty() ? RowKind::emptyText : RowKind::scan;
}

QVariant SidebarModel::data(const QModelIndex& index, int role) const {
    const int row = index.row();
    const RowKind kind = this->kind(row);
    if (role == KindRole)
        return static_cast<int>(kind);
    switch (kind) {
    case RowKind::section:
        return role == Qt::DisplayRole ? QVariant(row == 0 ? QStringLiteral("Menus") : QStringLiteral("Scans"))
                                       : QVariant();
    case RowKind::emptyText:
        return role == Qt::DisplayRole ? QVariant(QStringLiteral("No scans yet. Use Open… to scan a skin."))
                                       : QVariant();
    case RowKind::scan:
        return scanData(static_cast<std::size_t>(row - FirstScan), role);
    case RowKind::menu:
        break;
    }
    const Menu& menu = Menus[static_cast<std::size_t>(row - FirstMenu)];
    if (role == Qt::DisplayRole)
        return QString::fromUtf8(menu.title);
    if (role == SymbolRole)
        return static_cast<int>(menu.symbol);
    return role == ToneRole ? QVariant(static_cast<int>(Tone::normal)) : QVariant();
}

QVariant SidebarModel::scanData(std::size_t offset, int role) const {
    const auto& items = scans_.items();
    // Between a change of the scans and its notice the two differ.
    if (offset >= items.size())
        return {};
    const ScannerViewModel::ScanItem& item = items[offset];
    switch (role) {
    case Qt::DisplayRole:
        return textOf(item.displayName());
    case Qt::ToolTipRole:
    case PathRole:
        return textOf(item.path);
    case Qt::AccessibleDescriptionRole:
        return StatusIcon::of(item.state).description;
    case SymbolRole:
        return static_cast<int>(StatusIcon::of(item.state).symbol);
    case ToneRole:
        return static_cast<int>(StatusIcon::of(item.state).tone);
    default:
        return {};
    }
}

Qt::ItemFlags SidebarModel::flags(const QModelIndex& index) const {
    const RowKind kind = this->kind(index.row());
    const bool isChoice = kind == RowKind::menu || kind == RowKind::scan;
    return isChoice ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren : Qt::ItemNeverHasChildren;
}

std::optional<SidebarSelection> SidebarModel::selection(int row) const {
    if (row < 0 || row >= rowCount())
        return std::nullopt;
    if (const auto offset = scanOffset(row))
        return SidebarSelection::ofScan(ids_[*offset]);
    if (kind(row) == RowKind::menu)
        return SidebarSelection{Menus[static_cast<std::size_t>(row - FirstMenu)].kind};
    return std::nullopt;
}

int SidebarModel::row(const SidebarSelection& selection) const {
    if (selection.isScan()) {
        const auto found = offsets_.find(selection.scan);
        return found == offsets_.end() ? -1 : FirstScan + static_cast<int>(found->second);
    }
    for (std::size_t i = 0; i < Menus.size(); ++i) {
        if (Menus[i].kind == selection.kind)
            return FirstMenu + static_cast<int>(i);
    }
    return -1;
}

std::optional<std::size_t> SidebarModel::scanOffset(int row) const {
    if (row < FirstScan || row >= rowCount() || ids_.empty())
        return std::nullopt;
    return static_cast<std::size_t>(row - FirstScan);
}

bool SidebarModel::isScanning() const {
    for (const auto& item : scans_.items()) {
        if (std::holds_alternative<ScannerViewModel::Scanning>(item.state))
            return true;
    }
    return false;
}

} // namespace Ostrel
