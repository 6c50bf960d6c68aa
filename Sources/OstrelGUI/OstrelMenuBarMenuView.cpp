#include "OstrelGUI/OstrelMenuBarMenuView.h"

#include "OstrelEngine/Host/ContextMenu.h"
#include "OstrelGUI/OstrelIcon.h"

#include <QImage>

#include <functional>
#include <vector>

namespace Ostrel {

OstrelMenuBarMenuView::OstrelMenuBarMenuView(
    std::function<void()> open, std::function<void()> quit, DesktopAppearance* appearance)
    : appearance_(appearance) {
    content_.title = "Ostrel";
    content_.toolTip = "Ostrel";
    content_.iconName = "dev.ostrel.gui";
    content_.drawIcon = OstrelIcon::draw;
    content_.menu = {{"Open Ostrel", std::move(open)}, {"Quit Ostrel", std::move(quit)}};
}

OstrelMenuBarMenuView::~OstrelMenuBarMenuView() = default;

void OstrelMenuBarMenuView::popUp(const QPoint& at) {
    std::vector<ContextMenu::Item> items;
    for (const auto& entry : content_.menu)
        items.push_back({QString::fromStdString(entry.title), false, entry.action});
    menu_ = std::make_unique<ContextMenu>(std::move(items), DesktopLook::of(appearance_));
    // It is still at work when it says that it is closed.
    menu_->onClosed = [this] {
        if (menu_)
            menu_.release()->deleteLater();
    };
    menu_->popUp(at);
}

} // namespace Ostrel
