#include "OstrelCLI/HeadlessFullHost.h"

#include "OstrelDialect/LiteralMarks.h"

#include <utility>

namespace Ostrel {

namespace {

constexpr int PlaceX = 100;
constexpr int PlaceY = 100;

/// The bang as it would be written.
std::string actionText(const BangCall& call) {
    std::string text = "!" + call.name;
    for (const auto& argument : call.arguments) {
        const auto value = LiteralMarks::dropped(argument.text);
        const bool isPlain = !value.empty() && value.find_first_of(" \t\"[]") == std::string::npos;
        text += isPlain ? " " + value : " \"" + value + "\"";
    }
    return text;
}

std::string targetText(const BangTarget& target) {
    return target.kind == BangTarget::Kind::Others ? "*" : target.name;
}

std::string_view levelText(LogLevel level) {
    switch (level) {
    case LogLevel::Notice:
        return "Notice";
    case LogLevel::Error:
        return "Error";
    case LogLevel::Warning:
        return "Warning";
    case LogLevel::Debug:
        return "Debug";
    }
    return {};
}

} // namespace

HeadlessFullHost::HeadlessFullHost(SkinHost& base, const DialectOptions& options)
    : base_(base)
    , allowed_(options.allowed) {
    const ScreenArea screen{0, 0, options.screenWidth, options.screenHeight};
    place_.screens = {{screen, screen}};
    place_.x = PlaceX;
    place_.y = PlaceY;
}

void HeadlessFullHost::tell(std::string_view kind, const JSON& members) {
    if (watcher_)
        watcher_->skinDidAsk(kind, members);
}

void HeadlessFullHost::place(int x, int y) {
    place_.x = x;
    place_.y = y;
}

bool HeadlessFullHost::isAllowed(Permission permission, std::string_view detail) {
    switch (permission) {
    case Permission::Scripts:
        if (!allowed_.scripts)
            tell("script", {{"file", detail}, {"refused", true}});
        return allowed_.scripts;
    case Permission::Web:
        tell("web", allowed_.web ? JSON{{"url", detail}} : JSON{{"url", detail}, {"refused", true}});
        return allowed_.web;
    case Permission::Programs:
        if (!allowed_.programs)
            tell("launch", {{"program", detail}, {"refused", true}});
        return allowed_.programs;
    case Permission::Files:
        if (!allowed_.files)
            tell("open", {{"target", detail}, {"refused", true}});
        return allowed_.files;
    }
    return false;
}

void HeadlessFullHost::log(LogLevel level, std::string_view /*section*/, std::string_view text) {
    tell("log", {{"level", levelText(level)}, {"text", text}});
}

void HeadlessFullHost::sendBang(const BangTarget& target, const BangCall& call) {
    const auto* member = target.kind == BangTarget::Kind::SkinGroup ? "group" : "config";
    tell("bang", {{member, targetText(target)}, {"action", actionText(call)}});
}

void HeadlessFullHost::moveWindow(int x, int y) {
    place(x, y);
    tell("move", {{"x", x}, {"y", y}});
}

void HeadlessFullHost::setZPosition(int position) {
    place_.zPosition = position;
    tell("zpos", {{"position", position}});
}

void HeadlessFullHost::showWindow(bool isShown, bool isFading) {
    settings_.isShown = isShown;
    if (isFading)
        tell("fade", {{"shown", isShown}, {"milliseconds", settings_.fadeMilliseconds}});
    else
        tell(isShown ? "show" : "hide", JSON::object());
}

void HeadlessFullHost::setTransparency(int alpha) {
    settings_.alpha = alpha;
    tell("fade", {{"alpha", alpha}});
}

void HeadlessFullHost::showMenu(const std::vector<SkinMenuItem>& ownItems, bool onlyOwnItems) {
    auto items = JSON::array();
    for (const auto& item : ownItems)
        items.push_back({{"title", item.title}, {"action", item.action}});
    tell("menu", {{"items", std::move(items)}, {"custom", onlyOwnItems}});
}

void HeadlessFullHost::askProgram(std::string_view what) {
    tell("program", {{"text", what}});
}

void HeadlessFullHost::setWallpaper(const std::string& path, std::string_view manner) {
    tell("wallpaper", {{"file", path}, {"manner", manner}});
}

void HeadlessFullHost::editFile(const std::string& path) {
    tell("open", {{"target", path}});
}

void HeadlessFullHost::setClipboard(std::string_view text) {
    tell("clip", {{"text", text}});
}

void HeadlessFullHost::playSound(const std::string& path, bool isLooping) {
    tell("sound", {{"file", path}, {"loop", isLooping}});
}

} // namespace Ostrel
