#pragma once

#include "OstrelEngine/Measures/InputTextPresentation.h"
#include "OstrelEngine/Meters/MeterProtocol.h"
#include "OstrelEngine/Runtime/WidgetRuntimeState.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// What a running skin asks of whoever shows it. Called in the middle of the skin's own work, so what ends the skin is
/// to be done later, from the main queue. Main thread. Outlives the skin.
class SkinHost {
public:
    virtual ~SkinHost() = default;

    /// Every publication; the list lives until the next one.
    virtual void skinDidPublish(const std::vector<Drawable>& drawables) = 0;
    /// Close this skin.
    virtual void deactivate() = 0;
    /// Close the skin of this .ini file.
    virtual void deactivateConfig(const std::string& path) = 0;
    /// Open the skin of this .ini file, or, when toggling, close it if it runs.
    virtual void activateConfig(const std::string& path, bool toggle) = 0;
    /// Load this skin again.
    virtual void refresh() = 0;
    /// Load all skins again.
    virtual void refreshApp() = 0;
    /// Shows the input field; absent dismisses it, whether one is shown or not.
    virtual void promptInput(const std::optional<InputTextPresentation>& presentation) = 0;
    /// After a change of a variable or a meter's visibility by an action.
    virtual void stateDidChange(const WidgetRuntimeState&) { }
};

} // namespace Ostrel
