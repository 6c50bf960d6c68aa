#pragma once

#include "OstrelEngine/Measures/InputTextPresentation.h"
#include "OstrelEngine/Meters/MeterProtocol.h"
#include "OstrelEngine/Runtime/WidgetRuntimeState.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// What a running skin asks of its host. Each may be empty. They are called in the middle of the skin's own work, so
/// what ends the skin is to be done later, from the main queue.
struct SkinCallbacks {
    /// Every publication; the list lives until the next one.
    std::function<void(const std::vector<Drawable>&)> onUpdate;
    /// Close this skin.
    std::function<void()> onDeactivateRequest;
    /// Close the skin of this .ini file.
    std::function<void(const std::string& path)> onDeactivateConfigRequest;
    /// Open the skin of this .ini file, or, when toggling, close it if it runs.
    std::function<void(const std::string& path, bool toggle)> onActivateConfigRequest;
    /// Load this skin anew.
    std::function<void()> onRefreshRequest;
    /// Load all skins anew.
    std::function<void()> onRefreshAppRequest;
    /// Shows the input field; absent dismisses it, whether one is shown or not.
    std::function<void(const std::optional<InputTextPresentation>&)> onInputTextPrompt;
    /// After a change of a variable or a meter's visibility by an action.
    std::function<void(const WidgetRuntimeState&)> onStateDidChange;
};

} // namespace Ostrel
