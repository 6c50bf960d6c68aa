#include "OstrelPlatform/Linux/Tray/LinuxTray.h"

#include "OstrelPlatform/Linux/Desktop/SessionBus.h"
#include "OstrelPlatform/Linux/Tray/StatusNotifierTray.h"
#include "OstrelPlatform/Linux/Tray/XEmbedTray.h"

namespace Ostrel {

LinuxTray::LinuxTray(TrayContent content)
    : content_(std::move(content)) { }

LinuxTray::~LinuxTray() = default;

void LinuxTray::start() {
    embedded_ = XEmbedTray::create(content_);
    if (embedded_)
        pass(*embedded_);
    if (const auto address = sessionBusAddress())
        notifier_ = StatusNotifierTray::create(content_, *address);
    if (!notifier_)
        return didChange();
    pass(*notifier_);
    notifier_->onDecided = [this] { didChange(); };
    notifier_->onShownChange = [this] { didChange(); };
}

void LinuxTray::pass(TrayItem& tray) {
    tray.onActivate = [this] {
        if (onActivate)
            onActivate();
    };
    tray.onMenuRequest = [this](const QPoint& at) {
        if (onMenuRequest)
            onMenuRequest(at);
    };
    tray.onShownChange = [this] {
        if (onShownChange)
            onShownChange();
    };
}

void LinuxTray::didChange() {
    if (embedded_)
        embedded_->setWanted(!notifier_ || !notifier_->isShown());
    if (onShownChange)
        onShownChange();
}

bool LinuxTray::isShown() const {
    return (notifier_ && notifier_->isShown()) || (embedded_ && embedded_->isShown());
}

} // namespace Ostrel
