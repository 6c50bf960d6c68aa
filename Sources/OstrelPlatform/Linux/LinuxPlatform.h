#pragma once

#include "OstrelPlatform/Linux/FileSystemRecycleManagerBackend.h"
#include "OstrelPlatform/Linux/FontconfigRegistrar.h"
#include "OstrelPlatform/Linux/LazyRemoteReader.h"
#include "OstrelPlatform/Linux/LinuxAppearance.h"
#include "OstrelPlatform/Linux/LinuxClock.h"
#include "OstrelPlatform/Linux/LinuxHostStatistics.h"
#include "OstrelPlatform/Linux/LinuxWorkspace.h"
#include "OstrelPlatform/Linux/QSettingsUserDefaults.h"
#include "OstrelPlatform/Linux/QtMainQueue.h"
#include "OstrelPlatform/Platform.h"

#include <memory>

namespace Ostrel {

class DesktopPanels;

/// The adapters of a Linux desktop. Made once at program start, after the application object, and destroyed before it.
class LinuxPlatform {
public:
    LinuxPlatform();
    ~LinuxPlatform();

    const Platform& ports() const { return ports_; }
    DesktopPanels& desktopPanels() { return *desktopPanels_; }
    UserDefaults& defaults() { return defaults_; }

private:
    LinuxClock clock_;
    LinuxHostStatistics hostStatistics_;
    QtMainQueue mainQueue_;
    FontconfigRegistrar fonts_;
    LazyRemoteReader remoteReader_;
    LinuxWorkspace workspace_;
    LinuxAppearance appearance_;
    QSettingsUserDefaults defaults_;
    FileSystemRecycleManagerBackend recycleManager_{workspace_};
    std::unique_ptr<DesktopPanels> desktopPanels_;
    Platform ports_;
};

} // namespace Ostrel
