#include "OstrelGUI/Window/SettingsMenuView.h"

#include "OstrelCore/UserPreferenceKeys.h"
#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/DialectSettings.h"
#include "OstrelPlatform/UserDefaults.h"

#include <QVBoxLayout>

namespace Ostrel {

SettingsMenuView::SettingsMenuView(UserDefaults& defaults)
    : Page(QStringLiteral("Settings"), QStringLiteral("Configure global widget interaction behavior."))
    , defaults_(defaults)
    , reverseScroll_(new SwitchRow(QStringLiteral("Reverse cmd + scroll direction")))
    , dialects_(new DialectSettings(defaults)) {
    const QString help
        = QStringLiteral("Use cmd + scroll over a rendered widget to trigger the skin's MouseScrollUpAction "
                         "/ MouseScrollDownAction (commonly used for scaling).");
    auto* card = new Card(QStringLiteral("Widget Scroll"));
    card->column().addWidget(reverseScroll_);
    card->column().addWidget(makeDimLabel(help));
    reverseScroll_->setToolTip(help);
    reverseScroll_->setAccessibleDescription(help);
    column().addWidget(card);
    column().addWidget(dialects_);
    column().addStretch();
    connect(reverseScroll_, &QAbstractButton::toggled, this,
        [this](bool reversed) { defaults_.setBoolean(OstrelPreferenceKey::reverseCommandScrollDirection, reversed); });
}

void SettingsMenuView::showEvent(QShowEvent* event) {
    Page::showEvent(event);
    const bool reversed = defaults_.boolean(OstrelPreferenceKey::reverseCommandScrollDirection).value_or(false);
    const QSignalBlocker quiet(reverseScroll_);
    reverseScroll_->setChecked(reversed);
    dialects_->refresh();
}

} // namespace Ostrel
