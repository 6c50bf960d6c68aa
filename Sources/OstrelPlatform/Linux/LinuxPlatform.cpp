#include "OstrelPlatform/Linux/LinuxPlatform.h"

#include "OstrelPlatform/Linux/X11/QtDesktopPanels.h"
#include "OstrelPlatform/Linux/X11/X11DesktopPanels.h"

namespace Ostrel {

namespace {

std::unique_ptr<DesktopPanels> panelsOfThisDesktop() {
    if (auto x11 = X11DesktopPanels::create())
        return x11;
    return std::make_unique<QtDesktopPanels>();
}

} // namespace

LinuxPlatform::LinuxPlatform()
    : mainQueue_(hostStatistics_)
    , desktopPanels_(panelsOfThisDesktop())
    , ports_{.clock = clock_,
          .mainQueue = mainQueue_,
          .hostStatistics = hostStatistics_,
          .fonts = fonts_,
          .remoteReader = remoteReader_,
          .workspace = &workspace_,
          .appearance = &appearance_,
          .recycleManager = &recycleManager_,
          .scripts = &scripts_,
          .programs = &programs_,
          .web = &web_,
          .worker = &worker_,
          .networkProbe = &networkProbe_,
          .soundControl = &soundControl_} { }

LinuxPlatform::~LinuxPlatform() = default;

} // namespace Ostrel
