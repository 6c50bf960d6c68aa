#pragma once

#include "OstrelPlatform/Linux/Desktop/FontconfigRegistrar.h"
#include "OstrelPlatform/Linux/Desktop/LinuxAppearance.h"
#include "OstrelPlatform/Linux/Desktop/LinuxWorkspace.h"
#include "OstrelPlatform/Linux/Desktop/QSettingsUserDefaults.h"
#include "OstrelPlatform/Linux/Files/FileSystemRecycleManagerBackend.h"
#include "OstrelPlatform/Linux/Host/LinuxHostStatistics.h"
#include "OstrelPlatform/Linux/Host/LinuxNetworkProbe.h"
#include "OstrelPlatform/Linux/Programs/LinuxProgramRunner.h"
#include "OstrelPlatform/Linux/Scripts/LazyScriptEngine.h"
#include "OstrelPlatform/Linux/Sound/LazySoundControl.h"
#include "OstrelPlatform/Linux/Time/LinuxClock.h"
#include "OstrelPlatform/Linux/Time/QtMainQueue.h"
#include "OstrelPlatform/Linux/Web/LazyRemoteReader.h"
#include "OstrelPlatform/Linux/Web/LazyWebFetcher.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/ThreadSerialQueue.h"

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
    ThreadSerialQueue worker_;
    LinuxNetworkProbe networkProbe_{mainQueue_};
    LazySoundControl soundControl_{mainQueue_};
    FontconfigRegistrar fonts_;
    LazyRemoteReader remoteReader_;
    LazyScriptEngine scripts_;
    LinuxProgramRunner programs_{mainQueue_};
    LazyWebFetcher web_{mainQueue_};
    LinuxWorkspace workspace_;
    LinuxAppearance appearance_;
    QSettingsUserDefaults defaults_;
    FileSystemRecycleManagerBackend recycleManager_{workspace_};
    std::unique_ptr<DesktopPanels> desktopPanels_;
    Platform ports_;
};

} // namespace Ostrel
