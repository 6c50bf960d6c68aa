#pragma once

#include "OstrelPlatform/TrayItem.h"

#include <memory>

namespace Ostrel {

/// A tray item as a small window that the tray takes into its own, as freedesktop.org's system tray protocol has it.
/// Talks over Qt's connection and draws without Qt's windows; the tray leaves the menu to the application.
class XEmbedTray final : public TrayItem {
public:
    /// Absent unless Qt runs on X11 with pictures of 32 bits a pixel.
    static std::unique_ptr<XEmbedTray> create(TrayContent content);
    ~XEmbedTray() override;

    bool isShown() const override;
    /// Asks for a place in a tray, now and whenever one appears; false takes the item away again.
    void setWanted(bool isWanted);

private:
    class Server;
    explicit XEmbedTray(std::unique_ptr<Server> server);

    std::unique_ptr<Server> server_;
};

} // namespace Ostrel
