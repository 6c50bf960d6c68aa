#pragma once

#include "OstrelPlatform/TrayItem.h"

#include <memory>

namespace Ostrel {

class StatusNotifierTray;
class XEmbedTray;

/// The item in whichever tray the desktop has: on the session bus where a panel listens there, else embedded in the X
/// tray; never in both.
class LinuxTray final : public TrayItem {
public:
    explicit LinuxTray(TrayContent content);
    ~LinuxTray() override;

    /// Appears in the desktop's tray. Later than the widgets, since it connects to the bus.
    void start();
    bool isShown() const override;

private:
    void didChange();
    void pass(TrayItem& tray);

    TrayContent content_;
    std::unique_ptr<StatusNotifierTray> notifier_;
    std::unique_ptr<XEmbedTray> embedded_;
};

} // namespace Ostrel
