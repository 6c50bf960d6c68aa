#include "OstrelGUI/WidgetPreferences.h"

#include "OstrelCore/UserPreferenceKeys.h"
#include "OstrelEngine/Host/WidgetManager.h"
#include "OstrelPlatform/UserDefaults.h"

namespace Ostrel {

void connectPreferences(WidgetManager& widgetManager, const UserDefaults& defaults) {
    widgetManager.isCommandScrollReversed
        = [&defaults] { return defaults.boolean(OstrelPreferenceKey::reverseCommandScrollDirection).value_or(false); };
}

} // namespace Ostrel
