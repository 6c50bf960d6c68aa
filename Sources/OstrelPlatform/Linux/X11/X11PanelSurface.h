#pragma once

#include "OstrelPlatform/DesktopPanels.h"
#include "OstrelPlatform/Linux/X11/WindowShape.h"

#include <QImage>

#include <cstdint>
#include <memory>
#include <vector>

struct xcb_connection_t;

namespace Ostrel {

/// A picture in memory that the X server shares where it can, so that a put is a few dozen bytes and no answer.
class X11PanelSurface final : public PanelSurface {
public:
    /// What all surfaces of a server have in common.
    struct Screen {
        xcb_connection_t* connection = nullptr;
        /// The server reads our memory.
        bool sharesMemory = false;
        /// A compositor blends transparent pixels.
        bool blends = false;
        /// Those that live; each adds and removes itself.
        std::vector<X11PanelSurface*> surfaces;
    };

    /// `screen` outlives the surface; `depth` is that of the window, 24 or 32.
    X11PanelSurface(Screen& screen, std::uint32_t window, std::uint8_t depth);
    ~X11PanelSurface() override;

    QImage& resize(const QSize& pixels) override;
    void presentWhenShown() override;
    void present(const std::vector<QRect>& parts) override;

    /// A compositor has come or gone.
    void blendingDidChange();

    /// Whether the server can read memory of this process; asks it and waits for the answer.
    static bool canShareMemory(xcb_connection_t* connection);

private:
    class Memory;

    void put(std::uint32_t drawable, const QRect& part);
    void putInBands(std::uint32_t drawable, const QRect& part);
    void setBackground(std::uint32_t pixmap);
    void applyShape();

    Screen& screen_;
    std::uint32_t window_;
    std::uint8_t depth_;
    std::uint32_t context_;
    std::unique_ptr<Memory> memory_;
    QImage picture_;
    WindowShape shape_;
    bool isShaped_ = false;
    bool hasBackground_ = false;
};

} // namespace Ostrel
