#pragma once

#include "OstrelCLI/DialectOptions.h"
#include "OstrelCLI/JSON.h"
#include "OstrelEngine/Full/FullSkinHost.h"

#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Gets what a skin asks of its host, one call for each.
class HeadlessWatcher : public SkinHost {
public:
    /// What only a skin of the full dialect asks for.
    virtual void skinDidAsk(std::string_view /*kind*/, const JSON& /*members*/) { }
};

/// The host of a skin of the full dialect without a desktop. What it is asked for is told to the watcher; a place and a
/// layer are taken as well.
class HeadlessFullHost final : public FullSkinHost {
public:
    /// Both outlive this. The screen and what is allowed are those of the options.
    HeadlessFullHost(SkinHost& base, const DialectOptions& options);

    /// Null for nobody.
    void setWatcher(HeadlessWatcher* watcher) { watcher_ = watcher; }
    void place(int x, int y);

    void skinDidPublish(const std::vector<Drawable>& drawables) override { base_.skinDidPublish(drawables); }
    void deactivate() override { base_.deactivate(); }
    void deactivateConfig(const std::string& path) override { base_.deactivateConfig(path); }
    void activateConfig(const std::string& path, bool toggle) override { base_.activateConfig(path, toggle); }
    void refresh() override { base_.refresh(); }
    void refreshApp() override { base_.refreshApp(); }
    void promptInput(const std::optional<InputTextPresentation>& presentation) override {
        base_.promptInput(presentation);
    }

    SkinPlace place() const override { return place_; }
    bool isAllowed(Permission permission, std::string_view detail) override;
    void log(LogLevel level, std::string_view section, std::string_view text) override;
    void sendBang(const BangTarget& target, const BangCall& call) override;
    void moveWindow(int x, int y) override;
    void setZPosition(int position) override;
    void showWindow(bool isShown, bool isFading) override;
    void setTransparency(int alpha) override;
    WindowSettings windowSettings() const override { return settings_; }
    void setWindowSettings(const WindowSettings& settings) override { settings_ = settings; }
    void showMenu(const std::vector<SkinMenuItem>& ownItems, bool onlyOwnItems) override;
    void askProgram(std::string_view what) override;
    void setWallpaper(const std::string& path, std::string_view manner) override;
    void editFile(const std::string& path) override;
    void setClipboard(std::string_view text) override;
    void playSound(const std::string& path, bool isLooping) override;

private:
    void tell(std::string_view kind, const JSON& members);

    SkinHost& base_;
    AllowedKinds allowed_;
    SkinPlace place_;
    WindowSettings settings_;
    HeadlessWatcher* watcher_ = nullptr;
};

} // namespace Ostrel
