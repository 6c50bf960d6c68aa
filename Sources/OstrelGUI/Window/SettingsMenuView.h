#pragma once

#include "OstrelGUI/Window/Page.h"

namespace Ostrel {

class DialectSettings;
class SwitchRow;
class UserDefaults;

/// The preferences that hold for all widgets.
class SettingsMenuView final : public Page {
public:
    /// The settings outlive the view.
    explicit SettingsMenuView(UserDefaults& defaults);

protected:
    void showEvent(QShowEvent* event) override;

private:
    UserDefaults& defaults_;
    SwitchRow* reverseScroll_;
    DialectSettings* dialects_;
};

} // namespace Ostrel
