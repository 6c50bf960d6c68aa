#include "OstrelDialect/LiteralMarks.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Full/ActionHost.h"
#include "OstrelEngine/Full/ConfigNames.h"
#include "OstrelEngine/Full/FullBangs.h"
#include "OstrelEngine/Full/WindowSettings.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

// Bangs that are for a skin's window, for other skins and for the program.

namespace Ostrel {

namespace {

constexpr auto Own = BangRow::NoConfig;
constexpr auto AtOnce = BangRow::Timing::AtOnce;
constexpr auto Later = BangRow::Timing::AfterScript;

int whole(const BangArguments& arguments, std::size_t index, int least, int most, int otherwise) {
    const double number = arguments.number(index, otherwise);
    return static_cast<int>(std::clamp(std::trunc(number), double(least), double(most)));
}

void move(ActionHost& host, const BangArguments& arguments) {
    constexpr int Limit = 1000000;
    host.host().moveWindow(whole(arguments, 0, -Limit, Limit, 0), whole(arguments, 1, -Limit, Limit, 0));
}

void setAnchors(ActionHost& host, const BangArguments& arguments, std::size_t first) {
    auto settings = host.host().windowSettings();
    settings.anchorX = arguments.text(first);
    settings.anchorY = arguments.text(first + 1);
    host.host().setWindowSettings(settings);
}

void setAnchor(ActionHost& host, const BangArguments& arguments) {
    setAnchors(host, arguments, 0);
}

void setWindowPosition(ActionHost& host, const BangArguments& arguments) {
    if (arguments.count() >= 4)
        setAnchors(host, arguments, 2);
    const auto place = windowPosition(arguments.computed(0), arguments.computed(1), host.host().windowSettings(),
        host.host().place(), host.windowSize());
    host.host().moveWindow(place.x, place.y);
}

template <Switch Shown, bool IsFading> void show(ActionHost& host, const BangArguments&) {
    host.host().showWindow(
        Shown == Switch::Toggle ? !host.host().windowSettings().isShown : Shown == Switch::On, IsFading);
}

template <bool WindowSettings::*Setting> void turn(ActionHost& host, const BangArguments& arguments) {
    auto settings = host.host().windowSettings();
    const int value = whole(arguments, 0, -1, 1, 0);
    settings.*Setting = value < 0 ? !(settings.*Setting) : value > 0;
    host.host().setWindowSettings(settings);
}

void fadeDuration(ActionHost& host, const BangArguments& arguments) {
    constexpr int Longest = 60000;
    auto settings = host.host().windowSettings();
    settings.fadeMilliseconds = whole(arguments, 0, 0, Longest, settings.fadeMilliseconds);
    host.host().setWindowSettings(settings);
}

void setTransparency(ActionHost& host, const BangArguments& arguments) {
    host.host().setTransparency(whole(arguments, 0, 0, 255, 255));
}

void zPosition(ActionHost& host, const BangArguments& arguments) {
    host.host().setZPosition(whole(arguments, 0, -2, 2, 0));
}

template <bool OnlyOwnItems> void menu(ActionHost& host, const BangArguments&) {
    host.host().showMenu(host.menuItems(), OnlyOwnItems);
}

/// The variant behind the one that runs; without one the last that ran, else the first.
std::string nextVariant(ActionHost& host, const std::string& config, bool isToggle) {
    const auto files = ConfigNames::variants(host.folders(), config);
    if (files.empty())
        return {};
    if (const auto loaded = host.host().loadedFile(config)) {
        const auto found = std::ranges::find(files, *loaded);
        if (isToggle || found == files.end())
            return *loaded;
        return std::next(found) == files.end() ? files.front() : *std::next(found);
    }
    const auto last = host.host().lastFile(config);
    return last && std::ranges::find(files, *last) != files.end() ? *last : files.front();
}

template <bool IsToggle> void activate(ActionHost& host, const BangArguments& arguments) {
    const auto config = ConfigNames::canonical(host.folders(), arguments.text(0));
    const auto file = arguments.text(1);
    const auto path = trimmed(file).empty() ? nextVariant(host, config, IsToggle)
                                            : ConfigNames::variant(host.folders(), config, file).value_or("");
    if (path.empty())
        return host.log(LogLevel::Warning, arguments.section(), "There is no skin " + config + " " + file);
    host.host().activateConfig(path, IsToggle);
}

void editSkin(ActionHost& host, const BangArguments& arguments) {
    const auto config = arguments.text(0);
    const auto file = arguments.text(1);
    const auto& folders = host.folders();
    const auto name = trimmed(config).empty() ? folders.config : ConfigNames::canonical(folders, config);
    if (!trimmed(file).empty()) {
        if (const auto path = ConfigNames::variant(folders, name, file))
            host.host().editFile(*path);
        return;
    }
    const auto path = ConfigNames::areSame(name, folders.config) ? folders.skinFile : nextVariant(host, name, true);
    if (!path.empty())
        host.host().editFile(path);
}

void setWallpaper(ActionHost& host, const BangArguments& arguments) {
    host.host().setWallpaper(host.folders().absolutePath(arguments.text(0)), arguments.text(1));
}

/// Something that only the program's own windows do.
template <char Which> void askProgram(ActionHost& host, const BangArguments& arguments) {
    std::string what;
    if constexpr (Which == 'a')
        what = "About";
    else if constexpr (Which == 'm')
        what = "Manage";
    else if constexpr (Which == 't')
        what = "TrayMenu";
    else if constexpr (Which == 'l')
        what = "LoadLayout";
    else
        what = "Quit";
    for (std::size_t i = 0; i < arguments.count(); ++i)
        what += " " + arguments.text(i);
    host.host().askProgram(what);
}

/// Blur behind windows is the desktop's own affair here.
void nothing(ActionHost&, const BangArguments&) { }

constexpr BangRow Rows[] = {
    {"Move", 2, 2, AtOnce, move},
    {"SetWindowPosition", 2, BangRow::OddConfig, AtOnce, setWindowPosition},
    {"SetAnchor", 2, 2, AtOnce, setAnchor},
    {"ZPos", 1, 1, AtOnce, zPosition},
    {"ZPosGroup", 2, Own, AtOnce, zPosition, 1, "ZPos"},
    {"SetTransparency", 1, 1, AtOnce, setTransparency},
    {"SetTransparencyGroup", 2, Own, AtOnce, setTransparency, 1, "SetTransparency"},
    {"FadeDuration", 1, 1, AtOnce, fadeDuration},
    {"FadeDurationGroup", 2, Own, AtOnce, fadeDuration, 1, "FadeDuration"},
    {"Show", 0, 0, AtOnce, show<Switch::On, false>},
    {"Hide", 0, 0, AtOnce, show<Switch::Off, false>},
    {"Toggle", 0, 0, AtOnce, show<Switch::Toggle, false>},
    {"ShowFade", 0, 0, AtOnce, show<Switch::On, true>},
    {"HideFade", 0, 0, AtOnce, show<Switch::Off, true>},
    {"ToggleFade", 0, 0, AtOnce, show<Switch::Toggle, true>},
    {"ShowGroup", 1, Own, AtOnce, show<Switch::On, false>, 0, "Show"},
    {"HideGroup", 1, Own, AtOnce, show<Switch::Off, false>, 0, "Hide"},
    {"ToggleGroup", 1, Own, AtOnce, show<Switch::Toggle, false>, 0, "Toggle"},
    {"ShowFadeGroup", 1, Own, AtOnce, show<Switch::On, true>, 0, "ShowFade"},
    {"HideFadeGroup", 1, Own, AtOnce, show<Switch::Off, true>, 0, "HideFade"},
    {"ToggleFadeGroup", 1, Own, AtOnce, show<Switch::Toggle, true>, 0, "ToggleFade"},
    {"Draggable", 1, 1, AtOnce, turn<&WindowSettings::isDraggable>},
    {"KeepOnScreen", 1, 1, AtOnce, turn<&WindowSettings::keepsOnScreen>},
    {"ClickThrough", 1, 1, AtOnce, turn<&WindowSettings::isClickThrough>},
    {"SnapEdges", 1, 1, AtOnce, turn<&WindowSettings::snapsToEdges>},
    {"AutoSelectScreen", 1, 1, AtOnce, turn<&WindowSettings::autoSelectsScreen>},
    {"DraggableGroup", 2, Own, AtOnce, turn<&WindowSettings::isDraggable>, 1, "Draggable"},
    {"KeepOnScreenGroup", 2, Own, AtOnce, turn<&WindowSettings::keepsOnScreen>, 1, "KeepOnScreen"},
    {"ClickThroughGroup", 2, Own, AtOnce, turn<&WindowSettings::isClickThrough>, 1, "ClickThrough"},
    {"SnapEdgesGroup", 2, Own, AtOnce, turn<&WindowSettings::snapsToEdges>, 1, "SnapEdges"},
    {"AutoSelectScreenGroup", 2, Own, AtOnce, turn<&WindowSettings::autoSelectsScreen>, 1, "AutoSelectScreen"},
    {"SkinMenu", 0, 0, Later, menu<false>},
    {"SkinCustomMenu", 0, 0, Later, menu<true>},
    {"ActivateConfig", 1, Own, Later, activate<false>},
    {"ToggleConfig", 1, Own, Later, activate<true>},
    {"EditSkin", 0, Own, Later, editSkin},

    {"SetClip", 1, Own, AtOnce,
        [](ActionHost& host, const BangArguments& arguments) { host.host().setClipboard(arguments.text(0)); }},
    {"SetWallpaper", 1, Own, Later, setWallpaper},
    {"About", 0, Own, Later, askProgram<'a'>},
    {"Manage", 0, Own, Later, askProgram<'m'>},
    {"TrayMenu", 0, Own, Later, askProgram<'t'>},
    {"LoadLayout", 1, Own, Later, askProgram<'l'>},
    {"Quit", 0, Own, Later, askProgram<'q'>},
    {"ResetStats", 0, Own, AtOnce, nothing},
    {"ShowBlur", 0, Own, AtOnce, nothing},
    {"HideBlur", 0, Own, AtOnce, nothing},
    {"ToggleBlur", 0, Own, AtOnce, nothing},
    {"AddBlur", 0, Own, AtOnce, nothing},
    {"RemoveBlur", 0, Own, AtOnce, nothing},
};

} // namespace

std::span<const BangRow> windowBangs() {
    return Rows;
}

} // namespace Ostrel
