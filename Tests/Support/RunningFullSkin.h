#pragma once

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelDialect/PackReader.h"
#include "OstrelEngine/Full/FullSkin.h"
#include "Support/FakePlatform.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel {

/// Writes down what a skin of the full dialect asks of its host.
class RecordingFullHost : public FullSkinHost {
public:
    int published = 0;
    std::vector<std::string> shown;
    std::vector<std::string> requests;
    SkinPlace where{.x = 100, .y = 100};
    WindowSettings settings;
    bool isAllAllowed = true;

    void skinDidPublish(const std::vector<Drawable>& drawables) override {
        ++published;
        shown.clear();
        for (const auto& drawable : drawables)
            shown.push_back(drawable.meter->name());
    }
    void deactivate() override { requests.emplace_back("deactivate"); }
    void deactivateConfig(const std::string& path) override { requests.push_back("deactivate " + path); }
    void activateConfig(const std::string& path, bool) override { requests.push_back("activate " + path); }
    void refresh() override { requests.emplace_back("refresh"); }
    void refreshApp() override { requests.emplace_back("refreshApp"); }
    void promptInput(const std::optional<InputTextPresentation>&) override { }
    SkinPlace place() const override { return where; }
    bool isAllowed(Permission, std::string_view) override { return isAllAllowed; }
    void log(LogLevel, std::string_view section, std::string_view text) override {
        requests.push_back("log " + std::string(section) + ": " + std::string(text));
    }
    void sendBang(const BangTarget& target, const BangCall& call) override {
        std::string line = "bang " + target.name + " " + call.name;
        for (const auto& argument : call.arguments)
            line += " " + argument.text;
        requests.push_back(line);
    }
    WindowSettings windowSettings() const override { return settings; }
    void setWindowSettings(const WindowSettings& wanted) override { settings = wanted; }
    void moveWindow(int x, int y) override {
        requests.push_back("move " + std::to_string(x) + " " + std::to_string(y));
    }
    void setZPosition(int position) override { requests.push_back("zpos " + std::to_string(position)); }
    void showWindow(bool isShown, bool isFading) override {
        settings.isShown = isShown;
        requests.push_back(std::string(isShown ? "show" : "hide") + (isFading ? " fading" : ""));
    }
    void setTransparency(int alpha) override { requests.push_back("alpha " + std::to_string(alpha)); }
    void showMenu(const std::vector<SkinMenuItem>& items, bool onlyOwnItems) override {
        std::string line = onlyOwnItems ? "own menu" : "menu";
        for (const auto& item : items)
            line += " | " + item.title + " -> " + item.action;
        requests.push_back(line);
    }
    void setClipboard(std::string_view text) override { requests.push_back("clip " + std::string(text)); }
    void playSound(const std::string& path, bool isLooping) override {
        requests.push_back((isLooping ? "loop " : "play ") + path);
    }
    void setCursor(const PointerCursor& cursor) override {
        requests.push_back("cursor " + std::to_string(static_cast<int>(cursor.shape)));
    }
    void setToolTip(const ToolTip& tip, const Rect&) override { requests.push_back("tip " + tip.text); }
    void askProgram(std::string_view what) override { requests.push_back("ask " + std::string(what)); }
    void setWallpaper(const std::string& path, std::string_view manner) override {
        requests.push_back("wallpaper " + path + " " + std::string(manner));
    }
    void editFile(const std::string& path) override { requests.push_back("edit " + path); }
};

/// A skin of the full dialect made of text, on a platform where nothing happens but what the test says. Nothing has
/// been updated at first.
class RunningFullSkin {
public:
    explicit RunningFullSkin(std::string text) {
        const std::string path = "/skins/Pack/Test/skin.ini";
        InMemoryFileProvider files;
        files.addFile(path, std::move(text));
        const auto folders = PackFolders::find(path, std::nullopt, "/skins/Pack", "/settings");
        skin = FullSkin::create(PackReader(files).read(folders).value(),
            Platform{time, time, fakes.host, fakes.fonts, fakes.network}, host);
    }
    ~RunningFullSkin() { skin->stop(); }
    RunningFullSkin(const RunningFullSkin&) = delete;
    RunningFullSkin& operator=(const RunningFullSkin&) = delete;

    /// As the timer does, one update interval later.
    void tick(int count = 1) {
        for (int i = 0; i < count; ++i) {
            time.advance(skin->updateIntervalSeconds());
            time.fireTimers();
        }
    }
    void run(std::string_view action) { skin->executeActionString(action); }

    double number(std::string_view measure) const { return skin->measure(measure)->value().numericValue; }
    std::string variable(std::string_view name) const {
        const auto* value = skin->variables().find(name);
        return value ? *value : "(none)";
    }
    /// "x y w h".
    std::string frame(std::string_view meter) const {
        const auto position = skin->meterTable().position(meter);
        if (!position)
            return "(none)";
        const auto& frame = skin->meterTable().at(*position).frame();
        std::string line;
        for (const double value : {frame.x, frame.y, frame.w, frame.h})
            line += (line.empty() ? "" : " ") + formatNumeric(value);
        return line;
    }
    /// An option of a meter as it was read last.
    std::string option(std::string_view meter, std::string_view key) const {
        const auto position = skin->meterTable().position(meter);
        const auto* value = position ? skin->meterTable().at(*position).options().find(key) : nullptr;
        return value ? *value : "(none)";
    }

    FakePlatform fakes;
    VirtualTime& time = fakes.queue;
    RecordingFullHost host;
    std::shared_ptr<FullSkin> skin;
};

} // namespace Ostrel
