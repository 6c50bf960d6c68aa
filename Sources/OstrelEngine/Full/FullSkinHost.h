#pragma once

#include "OstrelDialect/ActionText.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Runtime/SkinHost.h"

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
        /// The loaded skins of this group.
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

    virtual void moveWindow(int x, int y) = 0;
    virtual void setZPosition(int position) = 0;
    /// Shows or hides the window at once, or fading.
    virtual void showWindow(bool isShown, bool isFading) = 0;
    /// 0 to 255.
    virtual void setTransparency(int alpha) = 0;
    /// A context menu at the pointer: the skin's own items alone, or all.
    virtual void showMenu(bool onlyOwnItems) = 0;
    virtual void setClipboard(std::string_view text) = 0;
    /// An empty path stops the sound that plays.
    virtual void playSound(const std::string& path, bool isLooping) = 0;
};

} // namespace Ostrel
