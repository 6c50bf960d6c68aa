#include "OstrelGUI/Session/OstrelSessionState.h"

#include <algorithm>

namespace Ostrel {

bool operator==(const OstrelWidgetState& a, const OstrelWidgetState& b) {
    return a.path == b.path && a.origin == b.origin && a.isRendered == b.isRendered
        && areSameRuntime(a.runtime, b.runtime) && areSamePicture(a.snapshotData, b.snapshotData);
}

bool areSameRuntime(
    const std::shared_ptr<const WidgetRuntimeState>& a, const std::shared_ptr<const WidgetRuntimeState>& b) {
    return a == b || (a && b && *a == *b);
}

std::optional<std::size_t> OstrelSessionState::index(std::string_view path) const {
    const auto found = std::ranges::find(widgets, path, &OstrelWidgetState::path);
    return found == widgets.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - widgets.begin()));
}

void OstrelSessionState::upsert(OstrelWidgetState widget) {
    if (const auto position = index(widget.path))
        widgets[*position] = std::move(widget);
    else
        widgets.push_back(std::move(widget));
}

void OstrelSessionState::remove(std::string_view path) {
    std::erase_if(widgets, [path](const auto& widget) { return widget.path == path; });
}

} // namespace Ostrel
