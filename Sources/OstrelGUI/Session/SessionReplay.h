#pragma once

#include "OstrelGUI/Session/OstrelSessionState.h"

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Ostrel {

struct DetachedPictures;

/// Applies changes of a session, as `encodeChange` writes them, one after the other.
class SessionReplay {
public:
    explicit SessionReplay(OstrelSessionState start);
    /// False for what is no change; then nothing, or the part of it that is one, has been applied.
    bool apply(std::string_view change);
    OstrelSessionState take() { return std::move(state_); }

private:
    bool remove(const nlohmann::json& paths);
    bool merge(const nlohmann::json& widget, const DetachedPictures& pictures);
    bool mergeRuntime(const nlohmann::json& widget, OstrelWidgetState& state);
    void rebuildIndex();

    OstrelSessionState state_;
    /// The place of each path.
    std::unordered_map<std::string, std::size_t> index_;
    /// The run-time states that are this object's own, by path: a widget that counts has thousands of changes.
    std::unordered_map<std::string, std::shared_ptr<WidgetRuntimeState>> ownRuntimes_;
};

} // namespace Ostrel
