#pragma once

#include "OstrelGUI/ScannerViewModel.h"

namespace Ostrel {

/// What the sidebar points at.
struct SidebarSelection {
    enum class Kind { scan, widgetLibrary, dllCompatibilityLayers, mediaPlayer, settings };

    Kind kind = Kind::widgetLibrary;
    /// Of a scan.
    ScannerViewModel::ScanID scan = 0;

    static SidebarSelection ofScan(ScannerViewModel::ScanID id) { return {Kind::scan, id}; }
    bool isScan() const { return kind == Kind::scan; }

    friend bool operator==(const SidebarSelection&, const SidebarSelection&) = default;
};

} // namespace Ostrel
