#pragma once

namespace Ostrel {

class UserDefaults;
class WidgetManager;

/// Lets the widgets follow the user's preferences, which are read when they are needed. Both outlive what the manager
/// is asked.
void connectPreferences(WidgetManager& widgetManager, const UserDefaults& defaults);

} // namespace Ostrel
