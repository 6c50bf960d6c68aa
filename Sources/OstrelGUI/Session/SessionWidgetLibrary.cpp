#include "OstrelGUI/Session/SessionWidgetLibrary.h"

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelEngine/Host/WidgetManager.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"
#include "OstrelGUI/Session/OstrelSessionController.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

SessionWidgetLibrary::SessionWidgetLibrary(OstrelSessionController& session, WidgetManager& widgetManager)
    : session_(session)
    , widgetManager_(widgetManager) {
    session_.onLibraryItemsChange = [this] {
        if (onLibraryItemsChange)
            onLibraryItemsChange();
    };
}

SessionWidgetLibrary::~SessionWidgetLibrary() {
    session_.onLibraryItemsChange = nullptr;
}

const std::vector<WidgetLibraryItem>& SessionWidgetLibrary::libraryItems() const {
    return session_.libraryItems();
}

void SessionWidgetLibrary::registerDiscovered(std::span<const std::string> paths) {
    session_.registerDiscovered(paths);
}

void SessionWidgetLibrary::renderWidget(const std::string& path) {
    session_.renderWidget(path);
}

void SessionWidgetLibrary::launchWidget(const std::string& path) {
    DiskFileProvider files;
    DiagnosticCollector diagnostics;
    const SkinAtWork work(path.c_str());
    if (auto config = SkinLoader(files, diagnostics).load(path))
        widgetManager_.launch(std::move(*config));
}

void SessionWidgetLibrary::unrenderWidget(const std::string& path) {
    session_.unrenderWidget(path);
}

void SessionWidgetLibrary::deletePackage(
    std::span<const std::string> rootPaths, std::function<void(std::optional<std::string> failure)> done) {
    auto failure = session_.deletePackage(rootPaths);
    if (done)
        done(std::move(failure));
}

} // namespace Ostrel
