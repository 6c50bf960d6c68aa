#include "OstrelEngine/Measures/Full/FullSysColorMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/DesktopAppearance.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace Ostrel {

namespace {

using Bytes = std::array<int, 4>;

enum class Role { Accent, Window, WindowText, Face, FaceText, Shadow };
struct RoleName {
    std::string_view name;
    Role role;
};
constexpr RoleName Roles[] = {{"AERO", Role::Accent}, {"WIN8", Role::Accent}, {"HIGHLIGHT", Role::Accent},
    {"HOTLIGHT", Role::Accent}, {"MENUHILIGHT", Role::Accent}, {"ACTIVECAPTION", Role::Accent},
    {"GRADIENTACTIVECAPTION", Role::Accent}, {"ACTIVEBORDER", Role::Accent}, {"DWM_COLOR", Role::Accent},
    {"DWM_AFTERGLOW_COLOR", Role::Accent}, {"DESKTOP", Role::Face}, {"BACKGROUND", Role::Face},
    {"APPWORKSPACE", Role::Face}, {"BTNFACE", Role::Face}, {"3DFACE", Role::Face}, {"MENU", Role::Face},
    {"MENUBAR", Role::Face}, {"SCROLLBAR", Role::Face}, {"INFOBK", Role::Face}, {"INACTIVECAPTION", Role::Face},
    {"GRADIENTINACTIVECAPTION", Role::Face}, {"INACTIVEBORDER", Role::Face}, {"WINDOW", Role::Window},
    {"BTNHIGHLIGHT", Role::Window}, {"3DHIGHLIGHT", Role::Window}, {"HIGHLIGHTTEXT", Role::Window},
    {"CAPTIONTEXT", Role::FaceText}, {"BTNTEXT", Role::FaceText}, {"MENUTEXT", Role::FaceText},
    {"INFOTEXT", Role::FaceText}, {"INACTIVECAPTIONTEXT", Role::Shadow}, {"WINDOWTEXT", Role::WindowText},
    {"WINDOWFRAME", Role::WindowText}, {"BTNSHADOW", Role::Shadow}, {"3DSHADOW", Role::Shadow},
    {"3DDKSHADOW", Role::Shadow}, {"3DLIGHT", Role::Face}, {"GRAYTEXT", Role::Shadow}};

Bytes color(Role role, DesktopAppearance* appearance) {
    const bool isDark = appearance && appearance->prefersDark().value_or(false);
    const auto gray = [](int level) { return Bytes{level, level, level, 255}; };
    switch (role) {
    case Role::Accent: {
        const auto accent = appearance ? appearance->accentColor() : std::nullopt;
        const auto byte
            = [](double channel) { return static_cast<int>(std::lround(std::clamp(channel, 0.0, 1.0) * 255)); };
        return accent ? Bytes{byte(accent->red), byte(accent->green), byte(accent->blue), 255}
                      : Bytes{0, 122, 255, 255};
    }
    case Role::Window:
        return gray(isDark ? 30 : 255);
    case Role::WindowText:
    case Role::FaceText:
        return gray(isDark ? 255 : 0);
    case Role::Face:
        return gray(isDark ? 45 : 240);
    case Role::Shadow:
        return gray(isDark ? 130 : 160);
    }
    return {};
}

std::string shown(const Bytes& bytes, std::size_t first, std::size_t count, bool isHex) {
    constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string result;
    for (std::size_t i = first; i < first + count; ++i) {
        const auto byte = static_cast<std::size_t>(bytes[i]);
        if (isHex)
            result += {Digits[byte / 16], Digits[byte % 16]};
        else
            result += (result.empty() ? "" : ",") + formatInteger(bytes[i]);
    }
    return result;
}

} // namespace

void FullSysColorMeasure::update() {
    const auto type = std::ranges::find(Roles, upperCased(trimmed(text("ColorType"_key, "Desktop"))), &RoleName::name);
    if (type == std::end(Roles))
        return publishText("", -1);
    const auto bytes = color(type->role, host().platform().appearance);
    const auto display = upperCased(trimmed(text("DisplayType"_key, "All")));
    const bool isHex = isOn("Hex"_key, false);
    constexpr std::string_view Channels[] = {"RED", "GREEN", "BLUE", "ALPHA"};
    const auto channel = std::ranges::find(Channels, display);
    if (channel != std::end(Channels))
        return publishText(shown(bytes, static_cast<std::size_t>(channel - std::begin(Channels)), 1, isHex), 1);
    publishText(shown(bytes, 0, display == "RGB" ? 3 : 4, isHex), 1);
}

} // namespace Ostrel
