#pragma once

#include "OstrelPlatform/DesktopPanels.h"

#include <memory>

namespace Ostrel {

/// Panels on whatever window system Qt runs on, with what Qt itself offers: the fallback.
class QtDesktopPanels final : public DesktopPanels {
public:
    /// Qt's own window flags are all there is.
    void pin(QWindow& window) override;
    std::unique_ptr<PanelSurface> createSurface(QWindow& window) override;
};

} // namespace Ostrel
