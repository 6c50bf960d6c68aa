#pragma once

#include "OstrelEngine/Full/FullSkinHost.h"
#include "OstrelEngine/Full/FullSkinRegistry.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class FullSkin;
class WidgetPanel;
struct PackFolders;
struct PackSkin;
struct Platform;

/// What the user has decided about packs. Asked when a skin starts and each time it wants something.
class PackPolicy {
public:
    virtual ~PackPolicy() = default;
    virtual bool runsFullDialect(const std::string& skinPath) const = 0;
    /// `root` is the pack's folder.
    virtual bool isAllowed(const std::string& root, Permission permission) const = 0;
};

/// What the widgets of the full dialect share: the user's decisions, the way of bangs between skins, and what a config
/// keeps over a refresh of its skin. Main thread.
class FullWidgets {
public:
    /// Outlives this.
    explicit FullWidgets(const PackPolicy& policy)
        : policy_(policy) { }

    const PackPolicy& policy() const { return policy_; }
    FullSkinRegistry& registry() { return registry_; }
    /// Absent until the config has been shown for the first time.
    std::optional<WindowSettings>& settings(const std::string& skinPath) { return settings_[skinPath]; }

private:
    const PackPolicy& policy_;
    FullSkinRegistry registry_;
    std::map<std::string, std::optional<WindowSettings>> settings_;
};

/// Shows one skin of the full dialect: passes on what every skin asks for, and does to its panel what only such a skin
/// asks for. It outlives the skin.
class FullWidgetHost final : public FullSkinHost {
public:
    /// All of them outlive this.
    FullWidgetHost(SkinHost& base, FullWidgets& shared, const Platform& platform, const PackFolders& folders);
    ~FullWidgetHost() override;

    /// Builds the skin; `cycles` is what its counter stood at before a refresh.
    std::shared_ptr<FullSkin> makeSkin(PackSkin skin, std::int64_t cycles);
    std::int64_t cycles() const;
    /// From now on nobody reaches the skin, and what is shared is not asked for any more: the host may outlive it.
    void skinDidStop();
    /// Null while there is none.
    void setPanel(WidgetPanel* panel);
    /// Where the window of a config that is shown for the first time stands by the skin's own word, bottom left corner,
    /// y upward. After the skin's start.
    std::optional<Point> firstOrigin() const;
    void placeDidChange();
    std::vector<SkinMenuItem> menuItems() const;
    void runMenuAction(const std::string& action);

    void skinDidPublish(const std::vector<Drawable>& drawables) override { base_.skinDidPublish(drawables); }
    void deactivate() override { base_.deactivate(); }
    void deactivateConfig(const std::string& path) override { base_.deactivateConfig(path); }
    void activateConfig(const std::string& path, bool toggle) override { base_.activateConfig(path, toggle); }
    void refresh() override { base_.refresh(); }
    void refreshApp() override { base_.refreshApp(); }
    void promptInput(const std::optional<InputTextPresentation>& presentation) override {
        base_.promptInput(presentation);
    }

    SkinPlace place() const override;
    bool isAllowed(Permission permission, std::string_view detail) override;
    void log(LogLevel level, std::string_view section, std::string_view text) override;
    void sendBang(const BangTarget& target, const BangCall& call) override;
    WindowSettings windowSettings() const override { return settings_; }
    void setWindowSettings(const WindowSettings& settings) override;
    void moveWindow(int x, int y) override;
    void setZPosition(int position) override;
    void showWindow(bool isShown, bool isFading) override;
    void setTransparency(int alpha) override;
    void showMenu(const std::vector<SkinMenuItem>& ownItems, bool onlyOwnItems) override;
    void setCursor(const PointerCursor& cursor) override;
    std::optional<std::string> loadedFile(std::string_view config) const override;
    std::optional<std::string> lastFile(std::string_view config) const override;
    void editFile(const std::string& path) override;
    void setClipboard(std::string_view text) override;
    void playSound(const std::string& path, bool isLooping) override;

private:
    void keepSettings();
    void applySettings();

    SkinHost& base_;
    FullWidgets& shared_;
    const Platform& platform_;
    std::string skinFile_;
    std::string root_;
    WindowSettings settings_;
    bool isFirstTime_ = false;
    std::shared_ptr<FullSkin> skin_;
    WidgetPanel* panel_ = nullptr;
};

} // namespace Ostrel
