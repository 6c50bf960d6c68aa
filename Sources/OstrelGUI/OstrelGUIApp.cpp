#include "OstrelGUI/OstrelGUIApp.h"

#include "OstrelCore/SkinInput.h"
#include "OstrelCore/SkinPathResolver.h"
#include "OstrelEngine/Widget/WidgetController.h"
#include "OstrelGUI/DefaultPlacement.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace Ostrel {

namespace {

Size primaryScreenSize() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QSize size = screen ? screen->size() : QSize();
    return {static_cast<double>(size.width()), static_cast<double>(size.height())};
}

} // namespace

OstrelGUIApp::OstrelGUIApp(const Platform& platform, DesktopPanels& desktop)
    : platform_(platform)
    , desktop_(desktop) { }

OstrelGUIApp::~OstrelGUIApp() = default;

bool OstrelGUIApp::open(const std::vector<std::string>& paths) {
    auto [skinPaths, unreadablePaths] = SkinPathResolver::resolve(paths);
    // Loading these fails too, and tells why.
    skinPaths.insert(skinPaths.end(), unreadablePaths.begin(), unreadablePaths.end());
    DefaultPlacement placement(primaryScreenSize(), skinPaths.size());
    for (const auto& path : skinPaths) {
        DiagnosticCollector diagnostics;
        auto config = loadSkinToRun(path, diagnostics);
        if (!config)
            continue;
        auto& widget
            = widgets_.emplace_back(std::make_unique<WidgetController>(std::move(*config), platform_, desktop_));
        widget->onStop = [this](WidgetController&) { widgetDidStop(); };
        widget->chooseOrigin = [&](Size size) { return placement.next(size); };
        widget->start();
        widget->chooseOrigin = nullptr;
    }
    return !widgets_.empty();
}

void OstrelGUIApp::widgetDidStop() {
    const bool anyRuns = std::ranges::any_of(widgets_, [](const auto& widget) { return widget->isRunning(); });
    if (!anyRuns && onLastStop)
        onLastStop();
}

void OstrelGUIApp::stopAll() {
    for (const auto& widget : widgets_)
        widget->stop();
}

} // namespace Ostrel
