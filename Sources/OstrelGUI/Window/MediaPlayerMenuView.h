#pragma once

#include "OstrelGUI/Window/Page.h"

#include <functional>
#include <optional>
#include <string>

class QLabel;

namespace Ostrel {

class OptionRow;
class UserDefaults;
class WindowDialogs;

/// Chooses the application that all widgets' player commands go to.
class MediaPlayerMenuView final : public Page {
public:
    static constexpr std::string_view TargetKey = "targetMediaPlayer";
    /// The chosen player, or absent when each skin's own holds.
    using Override = std::function<void(std::optional<std::string>)>;

    /// References outlive the view. `onOverride` is told when the view appears and at each change.
    MediaPlayerMenuView(
        UserDefaults& defaults, WindowDialogs& dialogs, Override onOverride, std::function<void()> ensureAppIsActive);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void buildChoices();
    std::string target() const;
    void choose(const std::string& player);
    void promptForCustomPlayer();
    void syncOverride();
    void showTarget();

    UserDefaults& defaults_;
    WindowDialogs& dialogs_;
    Override onOverride_;
    std::function<void()> ensureAppIsActive_;
    QLabel* current_ = nullptr;
    OptionRow* default_ = nullptr;
    OptionRow* music_ = nullptr;
    OptionRow* spotify_ = nullptr;
    OptionRow* custom_ = nullptr;
};

} // namespace Ostrel
