#pragma once

#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Runtime/WidgetRuntimeState.h"
#include "OstrelGUI/Session/SnapshotPicture.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What is remembered of one widget.
struct OstrelWidgetState {
    /// Of the skin file; identifies the widget.
    std::string path;
    /// Bottom left corner of its window, y upward, relative to the primary screen; absent when it was never shown.
    std::optional<Point> origin = std::nullopt;
    /// Null when there is none. Neither this nor the picture is ever changed in place, so that copies of a state are
    /// cheap and what is the same is known by its place.
    std::shared_ptr<const WidgetRuntimeState> runtime = nullptr;
    /// Whether it was showing.
    bool isRendered = false;
    /// Null when there is none.
    std::shared_ptr<const SnapshotPicture> snapshotData = nullptr;

    /// Run-time states and pictures compare by their contents.
    friend bool operator==(const OstrelWidgetState& a, const OstrelWidgetState& b);
};

/// All widgets that are known, in the order in which they came.
struct OstrelSessionState {
    std::vector<OstrelWidgetState> widgets;

    /// Of the first state with exactly that path.
    std::optional<std::size_t> index(std::string_view path) const;
    /// Replaces the state of the same path at its place, or appends.
    void upsert(OstrelWidgetState widget);
    void remove(std::string_view path);

    friend bool operator==(const OstrelSessionState&, const OstrelSessionState&) = default;
};

bool areSameRuntime(
    const std::shared_ptr<const WidgetRuntimeState>& a, const std::shared_ptr<const WidgetRuntimeState>& b);

} // namespace Ostrel
