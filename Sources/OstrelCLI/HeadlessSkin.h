#pragma once

#include "OstrelCLI/HeadlessApplication.h"
#include "OstrelCLI/HeadlessAudio.h"
#include "OstrelCLI/HeadlessFullHost.h"
#include "OstrelCLI/HeadlessPlayer.h"
#include "OstrelCLI/RecordingWorkspace.h"
#include "OstrelCLI/SparedTrash.h"
#include "OstrelEngine/Full/FullSkin.h"
#include "OstrelEngine/Host/CanvasInput.h"
#include "OstrelEngine/Meters/DecodedPictureColors.h"
#include "OstrelEngine/Runtime/Skin.h"
#include "OstrelEngine/Runtime/SkinHost.h"
#include "OstrelPlatform/Linux/Desktop/FontconfigRegistrar.h"
#include "OstrelPlatform/Linux/Files/FileSystemRecycleManagerBackend.h"
#include "OstrelPlatform/Linux/Host/LinuxHostStatistics.h"
#include "OstrelPlatform/Linux/Scripts/LazyScriptEngine.h"
#include "OstrelPlatform/Linux/Web/LazyRemoteReader.h"
#include "OstrelPlatform/Linux/Web/LazyWebFetcher.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/VirtualSerialQueue.h"
#include "OstrelPlatform/VirtualTime.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// A skin that runs without a desktop: its clock and timer are the caller's, its figures the machine's.
class HeadlessSkin final : private SkinHost {
public:
    /// Absent when the skin cannot be loaded, which has then been told on standard error. `wallSeconds` fixes the wall
    /// clock.
    static std::unique_ptr<HeadlessSkin> load(
        const std::string& path, std::optional<double> wallSeconds, const DialectOptions& options);
    ~HeadlessSkin() override;
    HeadlessSkin(const HeadlessSkin&) = delete;
    HeadlessSkin& operator=(const HeadlessSkin&) = delete;

    Skin& skin() { return *skin_; }
    /// Null for a skin of the base.
    FullSkin* fullSkin() { return fullSkin_.get(); }
    /// Gets what the skin asks of its host, before the field is shown; null for nobody.
    void setWatcher(HeadlessWatcher* watcher);
    double elapsedSeconds() const { return time_.elapsedSeconds(); }

    void start();
    void stop();
    /// The clock moves on by the update interval, then the timer's tick runs.
    void tick();
    /// The same after as much real time has passed, at most a second: for figures that are measured over an interval.
    void tickInRealTime();
    /// Moves the clock and nothing else.
    void wait(double seconds);
    /// Something that happens to the skin from outside, with all that it puts off until later.
    void act(const std::function<void()>& happening);
    /// The widget of a skin of the full dialect stands there.
    void place(int x, int y);

    /// What the pointer and the input field do; no window is there to send it.
    CanvasInput& input() { return input_; }
    RecordingWorkspace& workspace() { return workspace_; }
    HeadlessPlayer& player() { return player_; }

    /// From here on each tick hears the next interval of this file. That it is no sound file is told on standard error.
    void playAudio(const std::string& path);
    /// From here on this file's text is what the music player answers. That it cannot be read is told on standard
    /// error.
    void answerPollsFrom(const std::string& path);
    /// Whether a file was asked for that cannot be read.
    bool lacksInput() const { return lacksInput_; }

private:
    explicit HeadlessSkin(std::optional<double> wallSeconds);

    void run(SkinConfig config);
    void run(PackSkin skin, const DialectOptions& options);
    Platform platform();

    // SkinHost
    void skinDidPublish(const std::vector<Drawable>& drawables) override;
    void deactivate() override;
    void deactivateConfig(const std::string& path) override;
    void activateConfig(const std::string& path, bool toggle) override;
    void refresh() override;
    void refreshApp() override;
    void promptInput(const std::optional<InputTextPresentation>& presentation) override;

    /// What was put off until now, and what the music player has answered.
    void runPending();

    HeadlessApplication application_;
    VirtualTime time_;
    LinuxHostStatistics hostStatistics_;
    FontconfigRegistrar fonts_;
    LazyRemoteReader remoteReader_;
    LazyScriptEngine scripts_;
    LazyWebFetcher web_{time_};
    /// What measures do in the background is done within the step that asked for it.
    VirtualSerialQueue background_{time_};
    HeadlessAudio audio_;
    HeadlessPlayer player_;
    RecordingWorkspace workspace_;
    DecodedPictureColors pictures_;
    FileSystemRecycleManagerBackend trash_{workspace_};
    SparedTrash sparedTrash_{trash_};
    std::vector<Drawable> drawables_;
    CanvasInput input_;
    HeadlessWatcher* watcher_ = nullptr;
    std::unique_ptr<HeadlessFullHost> fullHost_;
    std::shared_ptr<Skin> skin_;
    std::shared_ptr<FullSkin> fullSkin_;
    bool lacksInput_ = false;
};

} // namespace Ostrel
