#pragma once

#include "OstrelGUI/Window/SidebarModel.h"
#include "OstrelGUI/Window/WindowDialogs.h"
#include "OstrelGUI/Window/WindowTheme.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

class QStackedWidget;

namespace Ostrel {

class DLLCompatibilityMenuView;
class DesktopAppearance;
class DropHint;
class MediaPlayerMenuView;
class PackLaunch;
class Placeholder;
class ScanDetailView;
class SettingsMenuView;
class SidebarView;
class UserDefaults;
class WidgetLibrary;
class WidgetLibraryMenuView;

/// The main window: the sidebar, and beside it the page that is chosen there. Takes the notices of the library and of
/// the scans for itself.
class ContentView final : public QWidget {
public:
    /// What is referred to outlives the window.
    struct Dependencies {
        WidgetLibrary& library;
        ScannerViewModel& scans;
        UserDefaults& defaults;
        /// Null: nothing is known of the desktop.
        DesktopAppearance* appearance = nullptr;
        /// Told the player that holds for all widgets, or absent when each skin's own does.
        std::function<void(std::optional<std::string>)> onPlayerOverride;
        /// Null: those that people see.
        std::unique_ptr<WindowDialogs> dialogs;
    };

    explicit ContentView(Dependencies dependencies);
    ~ContentView() override;

    /// Puts the window on the screen and in front.
    void ensureOstrelAppIsActive();

    void presentOpenPanel();
    /// What the user has chosen, in the panel, by a drop or in a file manager. What is no skin, package or folder is
    /// dropped.
    void openSelection(std::span<const std::string> paths);
    /// The same for skins that are shown already.
    void listSelection(std::span<const std::string> paths);
    void clearScans();
    void removeScans(std::span<const std::size_t> offsets);

    const std::optional<SidebarSelection>& sidebarSelection() const { return sidebarSelection_; }
    void setSidebarSelection(std::optional<SidebarSelection> selection);

    /// After the window has been shown, and after it has been hidden or closed.
    std::function<void(bool isVisible)> onVisibilityChange;

protected:
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void buildWindow();
    QWidget* makeSidebar();
    QWidget* makeDetail();
    QWidget* makeToolbar();
    void addShortcuts();
    void observe();
    void applyStyleSheet();

    enum class ShowSkin { No, Yes };
    void scan(std::span<const std::string> paths, ShowSkin showSkin);
    /// The detail shows the scan in the dialect of its pack.
    void showScan(const ScannerViewModel::ScanItem& scan);
    void scansDidChange(const ScannerViewModel::Change& change);
    void libraryDidChange();
    void showDetail();
    QWidget* page(const SidebarSelection& selection);
    /// The item behind the selection; null when it is no scan, or a scan that is gone.
    const ScannerViewModel::ScanItem* selectedScan() const;
    bool isRunning(const std::string& path) const;

    Dependencies with_;
    std::unique_ptr<PackLaunch> packs_;
    WindowTheme theme_;
    SidebarModel sidebarModel_;
    std::optional<SidebarSelection> sidebarSelection_;
    bool hasOpenPanel_ = false;

    SidebarView* sidebar_ = nullptr;
    QStackedWidget* detail_ = nullptr;
    DropHint* dropHint_ = nullptr;
    Placeholder* placeholder_ = nullptr;
    // The pages are made when they are first wanted.
    ScanDetailView* scanDetail_ = nullptr;
    WidgetLibraryMenuView* library_ = nullptr;
    DLLCompatibilityMenuView* layers_ = nullptr;
    MediaPlayerMenuView* mediaPlayer_ = nullptr;
    SettingsMenuView* settings_ = nullptr;
};

} // namespace Ostrel
