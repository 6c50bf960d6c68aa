#pragma once

#include "OstrelPlatform/Linux/Tray/TrayBusTypes.h"
#include "OstrelPlatform/TrayItem.h"

#include <QDBusVirtualObject>

#include <vector>

namespace Ostrel {

/// The item's menu on the bus, com.canonical.dbusmenu: the tray draws it and tells what was chosen. One flat list that
/// never changes.
class TrayBusMenu final : public QDBusVirtualObject {
public:
    /// They outlive the menu.
    explicit TrayBusMenu(const std::vector<TrayContent::Entry>& entries)
        : entries_(entries) { }

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    QVariantList answer(const QDBusMessage& message);
    QVariantMap propertiesOf(int id) const;
    TrayBusTypes::MenuItem layoutOf(int id) const;
    QList<TrayBusTypes::MenuProperties> groupProperties(const QList<int>& ids) const;
    /// False when there is no such entry.
    bool handleEvent(int id, const QString& kind);
    bool isEntry(int id) const { return id > 0 && id <= static_cast<int>(entries_.size()); }

    const std::vector<TrayContent::Entry>& entries_;
};

} // namespace Ostrel
