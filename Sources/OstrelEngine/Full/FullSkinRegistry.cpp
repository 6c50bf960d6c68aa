#include "OstrelEngine/Full/FullSkinRegistry.h"

#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Full/ConfigNames.h"
#include "OstrelEngine/Full/FullSkin.h"

#include <algorithm>

namespace Ostrel {

void FullSkinRegistry::add(const std::shared_ptr<FullSkin>& skin) {
    const auto& folders = skin->folders();
    const auto found = std::ranges::find_if(
        entries_, [&](const Entry& entry) { return ConfigNames::areSame(entry.config, folders.config); });
    auto& entry = found == entries_.end() ? entries_.emplace_back() : *found;
    entry = {folders.config, folders.skinFile, skin};
}

void FullSkinRegistry::remove(const FullSkin& skin) {
    for (auto& entry : entries_) {
        if (entry.skin.lock().get() == &skin)
            entry.skin.reset();
    }
}

std::shared_ptr<FullSkin> FullSkinRegistry::find(std::string_view config) const {
    const auto found = std::ranges::find_if(
        entries_, [&](const Entry& entry) { return ConfigNames::areSame(entry.config, config); });
    return found == entries_.end() ? nullptr : found->skin.lock();
}

std::optional<std::string> FullSkinRegistry::lastFile(std::string_view config) const {
    const auto found = std::ranges::find_if(
        entries_, [&](const Entry& entry) { return ConfigNames::areSame(entry.config, config); });
    return found == entries_.end() ? std::nullopt : std::optional(found->file);
}

/// Taken before the first gets the bang: what it does may load and end skins.
std::vector<std::shared_ptr<FullSkin>> FullSkinRegistry::targets(
    const FullSkin& sender, const BangTarget& target) const {
    std::vector<std::shared_ptr<FullSkin>> skins;
    for (const auto& entry : entries_) {
        auto skin = entry.skin.lock();
        if (!skin || skin.get() == &sender)
            continue;
        const bool isMeant = target.kind == BangTarget::Kind::Config ? ConfigNames::areSame(entry.config, target.name)
            : target.kind == BangTarget::Kind::SkinGroup             ? skin->isInGroup(target.name)
                                                                     : skin->folders().root == sender.folders().root;
        if (isMeant)
            skins.push_back(std::move(skin));
    }
    return skins;
}

bool FullSkinRegistry::send(const FullSkin& sender, const BangTarget& target, const BangCall& call) {
    if (depth_ >= MaxDepth)
        return false;
    if (depth_++ == 0)
        deliveries_ = 0;
    bool handled = false;
    for (const auto& skin : targets(sender, target)) {
        if (++deliveries_ > MaxDeliveries)
            break;
        handled = skin->runBang(call) || handled;
    }
    --depth_;
    return handled;
}

} // namespace Ostrel
