#pragma once

#include "OstrelEngine/Actions/PointerRules.h"
#include "OstrelEngine/Full/FullSkinHost.h"
#include "OstrelEngine/Full/MouseActions.h"
#include "OstrelEngine/Full/PointerHits.h"

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace Ostrel {

class FullSkin;

/// The pointer rules of the full dialect: each action goes to the topmost meter under the pointer that has it, and to
/// the skin where none has; each meter knows by itself whether the pointer is in it. Cursor and tool tip are told to
/// the skin's host.
class FullPointer final : public PointerRules {
public:
    explicit FullPointer(std::weak_ptr<FullSkin> skin)
        : skin_(std::move(skin)) { }

    void mouseMoved(Point point) override;
    void mouseExited() override;
    Press mouseDown(Point point, const PointerPress& press) override;
    void mouseDragged(Point) override { }
    /// The window moves with the pointer now, so that the release runs nothing.
    void windowWillMove() override { isWindowMoving_ = true; }
    void mouseUp(Point point, PointerButton button) override;
    bool scrollWheel(const ScrollEvent& event) override;

private:
    static constexpr std::size_t ButtonCount = 5;
    /// Of an action: the meter, or the number behind the last for the skin.
    struct Target {
        std::size_t owner = 0;
        MouseActions::Found action;
    };

    static std::optional<Target> target(const FullSkin& skin, const PointerHits& hits, MouseAction action);
    /// False when nobody has it.
    bool run(FullSkin& skin, const PointerHits& hits, MouseAction action, Point point);
    void runOwn(FullSkin& skin, std::size_t owner, MouseAction action);
    void enterAndLeave(FullSkin& skin, const PointerHits& hits);
    void updateButtons(FullSkin& skin, std::optional<Point> point);
    std::optional<std::size_t> commandButton(const FullSkin& skin, Point point) const;
    void tellHost(FullSkin& skin, const PointerHits& hits, Point point);
    PointerCursor cursor(const FullSkin& skin, const PointerHits& hits, Point point) const;

    std::weak_ptr<FullSkin> skin_;
    /// For each meter, and behind them for the skin: whether the pointer is in it.
    std::vector<bool> isInside_;
    /// The button whose picture the left press began on.
    std::optional<std::size_t> pressedButton_;
    std::array<bool, ButtonCount> isBypassed_{};
    bool isWindowMoving_ = false;
    PointerCursor toldCursor_;
    ToolTip toldTip_;
};

} // namespace Ostrel
