#pragma once

#include "OstrelDialect/ActionText.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Meters/Full/ToolTip.h"
#include "OstrelEngine/Runtime/SkinHost.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// In whole units, origin top left of the primary screen, y downward.
struct ScreenArea {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const ScreenArea&, const ScreenArea&) = default;
};

/// Where a skin's window stands and what is around it.
struct SkinPlace {
    struct Screen {
        ScreenArea whole;
        /// Less panels and docks.
        ScreenArea work;

        friend bool operator==(const Screen&, const Screen&) = default;
    };

    /// Numbered from 1 in the variables that name one. Never empty while a skin runs.
    std::vector<Screen> screens{{{0, 0, 1920, 1080}, {0, 0, 1920, 1080}}};
    std::size_t primary = 0;
    /// Top left corner of the window. Its size is the skin's own business.
    int x = 0;
    int y = 0;
    /// -2 on the desktop to 2 always on top.
    int zPosition = 0;

    friend bool operator==(const SkinPlace&, const SkinPlace&) = default;
};

/// In the same coordinates as ScreenArea.
struct ScreenPoint {
    int x = 0;
    int y = 0;

    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

/// How a window behaves. It belongs to the config and outlives a refresh of the skin.
struct WindowSettings {
    bool isShown = true;
    bool isDraggable = true;
    bool keepsOnScreen = true;
    bool isClickThrough = false;
    bool snapsToEdges = true;
    bool autoSelectsScreen = false;
    /// 0 to 255.
    int alpha = 255;
    int fadeMilliseconds = 250;
    /// -2 on the desktop to 2 always on top.
    int zPosition = 0;
    /// The point of the window that is placed, as written: pixels, "%" of the window, "R" or "B" from its far edge.
    std::string anchorX;
    std::string anchorY;

    friend bool operator==(const WindowSettings&, const WindowSettings&) = default;
};

/// An item of the skin's own menu.
struct SkinMenuItem {
    /// Empty for a line between items.
    std::string title;
    /// References in it are resolved when it runs.
    std::string action;

    friend bool operator==(const SkinMenuItem&, const SkinMenuItem&) = default;
};

/// What the pointer looks like over a place of a skin.
struct PointerCursor {
    enum class Shape {
        Arrow,
        Hand,
        Text,
        Help,
        Busy,
        Cross,
        Pen,
        No,
        SizeAll,
        SizeNESW,
        SizeNS,
        SizeNWSE,
        SizeWE,
        UpArrow,
        Wait,
    };
    Shape shape = Shape::Arrow;
    /// An absolute path; empty for the shape.
    std::string file;

    friend bool operator==(const PointerCursor&, const PointerCursor&) = default;
};

/// A bang whose references are resolved. `name` is without "!" and old prefix. Arguments may hold the marks of
/// LiteralMarks.
struct BangCall {
    std::string name;
    std::vector<ActionArgument> arguments;
};

/// Whom a bang is for.
struct BangTarget {
    enum class Kind {
        /// The loaded skin of this config.
        Config,
        /// Every loaded skin of the pack but the sender, which has run it already.
        Others,
        /// The loaded skins of this group but the sender, which has run it already if it is one of them.
        SkinGroup,
    };
    Kind kind = Kind::Config;
    std::string name;
};

/// What a running skin of the full dialect asks of whoever shows it. Main thread. Outlives the skin.
class FullSkinHost : public SkinHost {
public:
    virtual SkinPlace place() const = 0;
    /// Whether the pack may do this. `detail` is what is asked for: a host, a command line, a path. A refusal is
    /// recorded.
    virtual bool isAllowed(Permission permission, std::string_view detail) = 0;
    /// One line of a skin's log. The skin has dropped what it said within the last minute.
    virtual void log(LogLevel level, std::string_view section, std::string_view text) = 0;
    /// Nothing happens when no such skin is loaded.
    virtual void sendBang(const BangTarget& target, const BangCall& call) = 0;

    virtual WindowSettings windowSettings() const { return {}; }
    /// Switches, duration and anchors; what has a request of its own below is not looked at.
    virtual void setWindowSettings(const WindowSettings&) { }
    /// Whatever screens there are: the host keeps the window in reach.
    virtual void moveWindow(int x, int y) = 0;
    virtual void setZPosition(int position) = 0;
    /// Shows or hides the window at once, or fading.
    virtual void showWindow(bool isShown, bool isFading) = 0;
    /// 0 to 255.
    virtual void setTransparency(int alpha) = 0;
    /// A context menu at the pointer: the skin's own items alone, or with all others.
    virtual void showMenu(const std::vector<SkinMenuItem>& ownItems, bool onlyOwnItems) = 0;
    /// The pointer rests on something else.
    virtual void setCursor(const PointerCursor&) { }
    /// The tip for what lies under the pointer, and the box of its meter; an empty one for none.
    virtual void setToolTip(const ToolTip&, const Rect& /*meter*/) { }
    /// The file of the loaded skin of a config; absent when none is loaded.
    virtual std::optional<std::string> loadedFile(std::string_view /*config*/) const { return std::nullopt; }
    /// The variant of a config that was loaded last; absent when it never was.
    virtual std::optional<std::string> lastFile(std::string_view /*config*/) const { return std::nullopt; }
    /// Something of the program itself: "About Log", "Manage Skins", "TrayMenu", "Quit", "LoadLayout x". The user is
    /// asked before anything ends.
    virtual void askProgram(std::string_view /*what*/) { }
    /// The user is asked first.
    virtual void setWallpaper(const std::string& /*path*/, std::string_view /*manner*/) { }
    /// Opens a file in the text editor.
    virtual void editFile(const std::string& /*path*/) { }
    virtual void setClipboard(std::string_view text) = 0;
    /// An empty path stops the sound that plays.
    virtual void playSound(const std::string& path, bool isLooping) = 0;
};

} // namespace Ostrel
