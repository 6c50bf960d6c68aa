#include "OstrelGUI/Session/SessionReplay.h"

#include "OstrelGUI/Session/DetachedPictures.h"
#include "OstrelGUI/Session/SessionDecoding.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>
#include <unordered_set>

namespace Ostrel {

using nlohmann::json;

SessionReplay::SessionReplay(OstrelSessionState start)
    : state_(std::move(start)) {
    rebuildIndex();
}

void SessionReplay::rebuildIndex() {
    index_.clear();
    for (std::size_t i = 0; i < state_.widgets.size(); ++i)
        index_.emplace(state_.widgets[i].path, i);
}

bool SessionReplay::apply(std::string_view change) {
    const auto pictures = detachPictures(change);
    const auto object = parseBounded(pictures.json);
    if (!object || !object->is_object())
        return false;
    if (const auto removed = object->find("remove"); removed != object->end() && !remove(*removed))
        return false;
    const auto widgets = object->find("widgets");
    if (widgets == object->end())
        return true;
    return widgets->is_array()
        && std::ranges::all_of(*widgets, [&](const json& widget) { return merge(widget, pictures); });
}

bool SessionReplay::remove(const json& paths) {
    if (!paths.is_array())
        return false;
    std::unordered_set<std::string> removed;
    for (const auto& path : paths) {
        if (!path.is_string())
            return false;
        removed.insert(path.get<std::string>());
        ownRuntimes_.erase(path.get_ref<const std::string&>());
    }
    std::erase_if(state_.widgets, [&](const auto& widget) { return removed.contains(widget.path); });
    rebuildIndex();
    return true;
}

bool SessionReplay::merge(const json& widget, const DetachedPictures& pictures) {
    const auto path = pathOf(widget);
    if (!path)
        return false;
    const auto [found, isNew] = index_.try_emplace(*path, state_.widgets.size());
    if (isNew)
        state_.widgets.push_back({.path = *path});
    auto& state = state_.widgets[found->second];
    return readWidget(widget, pictures, state) && mergeRuntime(widget, state);
}

bool SessionReplay::mergeRuntime(const json& widget, OstrelWidgetState& state) {
    const auto variables = widget.find("variables");
    const auto visibility = widget.find("meterVisibility");
    if (variables == widget.end() && visibility == widget.end())
        return true;
    auto& own = ownRuntimes_[state.path];
    if (!own || own != state.runtime)
        own = state.runtime ? std::make_shared<WidgetRuntimeState>(*state.runtime)
                            : std::make_shared<WidgetRuntimeState>();
    state.runtime = own;
    return (variables == widget.end() || readTexts(*variables, own->variables))
        && (visibility == widget.end() || readTruths(*visibility, own->meterVisibility));
}

} // namespace Ostrel
