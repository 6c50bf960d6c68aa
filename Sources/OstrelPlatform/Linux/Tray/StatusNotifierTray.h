#pragma once

#include "OstrelPlatform/TrayItem.h"

#include <functional>
#include <memory>
#include <string>

namespace Ostrel {

/// A tray item that a desktop's panel draws from what it reads on the session bus, org.kde.StatusNotifierItem. It is
/// announced to the desktop's watcher, whenever there is one. Nothing is waited for after the connection.
class StatusNotifierTray final : public TrayItem {
public:
    /// Absent when the bus at that address cannot be reached.
    static std::unique_ptr<StatusNotifierTray> create(TrayContent content, const std::string& busAddress);
    ~StatusNotifierTray() override;

    bool isShown() const override;
    /// Once: when it has become clear whether the desktop has such a tray now. Not if it is clear already.
    std::function<void()> onDecided;

private:
    class Item;
    explicit StatusNotifierTray(std::unique_ptr<Item> item);

    std::unique_ptr<Item> item_;
};

} // namespace Ostrel
