#pragma once

#include "OstrelDialect/Formula.h"
#include "OstrelDialect/PackSkin.h"
#include "OstrelEngine/Full/ActionHost.h"
#include "OstrelEngine/Full/FullActions.h"
#include "OstrelEngine/Full/FullLayout.h"
#include "OstrelEngine/Full/FullMeasureTable.h"
#include "OstrelEngine/Full/FullMeterTable.h"
#include "OstrelEngine/Full/LiveSection.h"
#include "OstrelEngine/Full/MouseActions.h"
#include "OstrelEngine/Full/SkinLog.h"
#include "OstrelEngine/Full/SkinScope.h"
#include "OstrelEngine/Full/SkinVariables.h"
#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Runtime/Skin.h"
#include "OstrelPlatform/Platform.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class FullScriptHost;
class RepeatingTimer;

/// One running skin of the full dialect: its sections, the update of measures and meters, the window's size and what
/// actions do to it.
class FullSkin final : public Skin, public FullMeasureHost, public ActionHost, private MeasureActionHost {
public:
    /// Builds measures and meters; nothing has been updated yet. What the platform refers to and the host outlive the
    /// skin. `cycles` is what
    /// the counter stood at before a refresh.
    static std::shared_ptr<FullSkin> create(
        PackSkin skin, const Platform& platform, FullSkinHost& host, std::int64_t cycles = 0);
    ~FullSkin() override;

    /// The window has got another place, or there are other screens.
    void placeDidChange();
    void focusDidChange(bool isFocused);
    /// A bang from another skin or from outside.
    bool runBang(const BangCall& call);
    /// An action that another skin sends to a config, "*" for all; true when this one is meant and did something.
    bool runFromConfig(std::string_view config, std::string_view action);
    /// A meter's or the skin's own action, its `#V#` resolved, while an event goes on.
    bool runEventAction(std::string_view action, const ActionOrigin& origin);
    /// An option of [Rainmeter] as it was read at load; absent when it is not written.
    std::optional<std::string_view> skinOption(const CaseKey& key) const { return option(skinOptions_, key); }
    const FullMeterTable& meterTable() const { return meters_; }
    const MouseActions& mouseActions() const { return mouseActions_; }
    /// Neither hidden nor in something that is, as of the last action.
    bool isMeterDrawn(std::size_t position) const { return layout_.isDrawn(position); }
    const Options& skinOptions() const { return skinOptions_; }

    // Skin
    void start() override;
    void stop() override;
    void performUpdate() override;
    const SkinConfig& config() const override;
    double updateIntervalSeconds() const override { return updateIntervalSeconds_; }
    int tickCount() const override { return tickCount_; }
    Size widgetSize() const override { return windowSize_; }
    const std::vector<std::shared_ptr<MeterRenderer>>& meters() const override { return meters_.all(); }
    bool isMeterVisible(std::string_view name) const override;
    std::vector<MeasureValue> boundValues(const MeterRenderer& meter) override;
    const Options& variables() const override { return variables_.own(); }
    const std::vector<std::unique_ptr<BaseMeasure>>& allMeasures() const override { return measures_.all(); }
    BaseMeasure* measure(std::string_view name) const override { return measures_.find(name); }
    WidgetRuntimeState snapshotState() const override { return {}; }
    void applyState(const WidgetRuntimeState&) override { }
    bool executeActionString(std::string_view action) override;
    std::unique_ptr<PointerRules> makePointerRules(const std::vector<Drawable>&) override;
    void submitInputText(std::string_view measureName, std::string_view value) override;
    void dismissInputText(std::string_view measureName) override;

    // FullMeasureHost
    const PackFolders& folders() const override { return skin_.folders; }
    const Platform& platform() const override { return platform_; }
    void log(LogLevel level, std::string_view section, std::string_view text) override;
    bool isAllowed(Permission permission, std::string_view detail) override;
    void runAction(const BaseMeasure& measure, std::string_view action) override;
    void runActionWithInput(const BaseMeasure& measure, std::string_view action, std::string_view input) override;
    std::string resolved(const BaseMeasure& measure, std::string_view raw) const override;
    std::int64_t cycleCount() const override { return cycleCount_; }
    void valueDidArrive(BaseMeasure&) override { }
    void promptInput(const std::optional<InputTextPresentation>& presentation) override;
    ScriptHost& scriptHost() override;

    // ActionHost
    FullSkinHost& host() const override { return host_; }
    const SkinVariables& variableTable() const override { return variables_; }
    const FormulaNames& measureNames() const override { return measureNames_; }
    void setVariable(std::string_view name, std::string_view value) override;
    void setOption(const SectionChoice& sections, std::string_view key, std::string_view value) override;
    void switchMeters(const SectionChoice& meters, Switch shown) override;
    void moveMeter(std::string_view meter, double x, double y) override;
    void updateMeters(const SectionChoice& meters) override;
    void changeMouseActions(const SectionChoice& meters, std::string_view names, MouseActionChange change) override;
    void switchMeasures(const SectionChoice& measures, Switch enabled) override;
    void pauseMeasures(const SectionChoice& measures, Switch paused) override;
    void updateMeasures(const SectionChoice& measures) override;
    void commandMeasure(std::string_view measure, std::string_view arguments) override;
    bool isInGroup(std::string_view group) const override;
    Size windowSize() const override { return windowSize_; }
    std::vector<SkinMenuItem> menuItems() const override;
    void update() override;
    void redraw() override;
    void actionsDidEnd() override;

private:
    /// Bare names of measures in formulas.
    class MeasureNames final : public FormulaNames {
    public:
        explicit MeasureNames(const FullMeasureTable& measures)
            : measures_(measures) { }
        std::optional<std::size_t> place(std::string_view name) const override { return measures_.position(name); }
        double value(std::size_t place) const override { return measures_.at(place).value().numericValue; }

    private:
        const FullMeasureTable& measures_;
    };
    enum class Cause { Cycle, Bang };

    FullSkin(PackSkin skin, const Platform& platform, FullSkinHost& host, std::int64_t cycles);

    void readSkinOptions();
    void buildBackground();
    void buildMeasure(std::size_t section);
    void buildMeter(std::size_t section);
    void armTimer();
    void runCycle();
    void updateMeasure(std::size_t position, Cause cause);
    void updateMeter(std::size_t position, Cause cause);
    void readMeasureState(std::size_t position);
    void readMeterState(std::size_t position);
    void setDisabled(FullMeasureEntry& entry, bool isDisabled);
    void fitWindow();
    void publish();
    void runSkinAction(const CaseKey& key);
    std::vector<std::size_t> chosenMeasures(const SectionChoice& choice) const;
    std::vector<std::size_t> chosenMeters(const SectionChoice& choice) const;
    void setSectionOption(LiveSection& section, std::string_view key, std::string_view value);

    // MeasureActionHost
    void runMeasureAction(const BaseMeasure& measure, std::string_view action) override;
    void logMeasure(const BaseMeasure& measure, std::string_view text) override;

    PackSkin skin_;
    const Platform platform_;
    FullSkinHost& host_;
    SkinLog log_;
    mutable std::optional<SkinConfig> config_;

    LiveSections sections_;
    SkinVariables variables_;
    FullMeasureTable measures_;
    MeasureNames measureNames_;
    FullMeterTable meters_;
    FullLayout layout_;
    SkinScope scope_;
    FullActions actions_;
    MouseActions mouseActions_;
    std::unique_ptr<FullScriptHost> scriptHost_;

    Options skinOptions_;
    FullMeterContext meterContext_;
    /// Null without one.
    std::shared_ptr<FullMeter> background_;
    double updateIntervalSeconds_ = 0;
    int defaultDivider_ = 1;
    bool isWindowDynamic_ = false;
    /// 0 in a direction that follows the meters.
    Size fixedSize_;
    Size windowSize_;
    bool hasWindowSize_ = false;

    std::vector<Drawable> drawables_;
    /// What `drawables_` shows.
    std::uint64_t drawnRevision_ = 0;
    std::unique_ptr<RepeatingTimer> timer_;
    int tickCount_ = 0;
    std::int64_t cycleCount_ = 0;
    int cycleDepth_ = 0;
    int updateDepth_ = 0;
    bool isRunning_ = false;
    bool areScriptsLoaded_ = false;
};

} // namespace Ostrel
