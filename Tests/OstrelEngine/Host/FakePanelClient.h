#pragma once

#include "OstrelEngine/Host/WidgetPanel.h"

#include <functional>
#include <vector>

namespace Ostrel {

class FakePanelClient final : public WidgetPanelClient {
public:
    void panelDidMove(Point origin) override { moves.push_back(origin); }
    void contextActionChosen(WidgetContextAction action) override {
        if (onContextAction)
            onContextAction(action);
    }
    bool isCommandScrollReversed() const override { return isReversed; }

    std::vector<Point> moves;
    std::function<void(WidgetContextAction)> onContextAction;
    bool isReversed = false;
};

} // namespace Ostrel
