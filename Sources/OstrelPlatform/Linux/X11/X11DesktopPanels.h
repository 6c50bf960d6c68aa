#pragma once

#include "OstrelPlatform/DesktopPanels.h"

#include <memory>

namespace Ostrel {

/// Panels on X11: window manager hints, pictures in memory shared with the server, an outline where no compositor
/// blends. It talks over Qt's own connection and asks for no answer after the start, so that a tick of any number of
/// widgets costs one wake of one thread.
class X11DesktopPanels final : public DesktopPanels {
public:
    /// Absent unless Qt runs on X11 with pictures of 32 bits a pixel.
    static std::unique_ptr<X11DesktopPanels> create();
    ~X11DesktopPanels() override;

    void pin(QWindow& window) override;
    std::unique_ptr<PanelSurface> createSurface(QWindow& window) override;

private:
    class Server;
    explicit X11DesktopPanels(std::unique_ptr<Server> server);

    std::unique_ptr<Server> server_;
};

} // namespace Ostrel
