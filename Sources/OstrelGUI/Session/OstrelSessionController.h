#pragma once

#include "OstrelGUI/Session/OstrelSessionState.h"
#include "OstrelGUI/Session/OstrelSessionStore.h"
#include "OstrelGUI/Session/PreviewSchedule.h"
#include "OstrelGUI/Session/SessionLibraryItems.h"
#include "OstrelGUI/WidgetLibraryItem.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Ostrel {

class SkinPacks;
class UserDefaults;
class WidgetController;
class WidgetManager;
struct Platform;

/// Remembers the user's widgets between starts: which are known, where each stood, which were showing, what each
/// changed at run time and how it looked. Watches the manager, stores every change at once. Main thread.
class OstrelSessionController {
public:
    /// All of them outlive the session.
    OstrelSessionController(WidgetManager& widgetManager, UserDefaults& defaults, const Platform& platform);
    ~OstrelSessionController();
    OstrelSessionController(const OstrelSessionController&) = delete;
    OstrelSessionController& operator=(const OstrelSessionController&) = delete;

    /// Sorted by package, then name, without regard to case, as the user's language has it.
    const std::vector<WidgetLibraryItem>& libraryItems() const { return libraryItems_.items(); }
    /// The same as asking the items, which have to be sorted for it.
    bool isLibraryEmpty() const { return state_.widgets.empty(); }
    /// After every change of the items. One observer; the session does not know windows.
    std::function<void()> onLibraryItemsChange;

    /// Before `restoreIfNeeded`: this widget is not shown again by itself. The message stands in the library until it
    /// is shown by hand, or the process ends.
    void setFailed(const std::string& path, const std::string& message);
    /// The same for all that were showing.
    void setAllFailed(const std::string& message);
    /// Opens again what was showing; once in a process. Skins that are gone are forgotten.
    void restoreIfNeeded();
    /// Adds skins that are not known yet, with all others of their packs, not rendered.
    void registerDiscovered(std::span<const std::string> paths);
    /// Loads and launches. Without an origin the saved one is used. A skin that does not load stays as it was.
    void renderWidget(const std::string& path, std::optional<Point> origin = std::nullopt);
    void unrenderWidget(const std::string& path);
    /// The folder of the pack that the skin belongs to.
    static std::string packageRootPath(const std::string& path);
    /// Stops the packs' widgets, removes their folders from disk for good, never following a link out of them, and
    /// forgets them. What went wrong, as a sentence for the user; then the packs stay known.
    [[nodiscard]] std::optional<std::string> deletePackage(std::span<const std::string> rootPaths);

    /// From now on widgets that stop stay marked as rendered: the application ends.
    void setTerminating() { isTerminating_ = true; }

private:
    void registerDiscovered(std::span<const std::string> paths, SkinPacks& packs);
    void renderWidget(const std::string& path, std::optional<Point> origin, SkinPacks& packs);
    void saveNow();

    void handleLaunch(const std::shared_ptr<WidgetController>& controller);
    void handleStop(const std::string& path);
    void updateRuntime(const std::string& path, const WidgetRuntimeState& runtime);
    void updateOrigin(const std::string& path, Point origin);
    void updateSnapshot(const std::string& path, std::string snapshotData);
    OstrelWidgetState stateOf(const std::string& path, bool isRenderedWhenNew) const;

    void captureSnapshotLater(const std::string& path, const std::shared_ptr<WidgetController>& controller);

    WidgetManager& widgetManager_;
    OstrelSessionStore store_;
    OstrelSessionState state_;
    /// Sorted when it is asked.
    mutable SessionLibraryItems libraryItems_;
    PreviewSchedule previews_;
    /// By path, what speaks against showing it.
    std::map<std::string, std::string> failures_;
    bool didRestore_ = false;
    bool isTerminating_ = false;
    /// Expires with the session.
    std::shared_ptr<void> life_ = std::make_shared<int>();
};

} // namespace Ostrel
