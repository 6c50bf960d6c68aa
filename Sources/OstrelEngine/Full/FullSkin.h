#pragma once

#include "OstrelDialect/PackSkin.h"
#include "OstrelEngine/Full/ActionHost.h"
#include "OstrelEngine/Full/FullActions.h"
#include "OstrelEngine/Full/FullLayout.h"
#include "OstrelEngine/Full/FullMeasureTable.h"
#include "OstrelEngine/Full/FullMeterTable.h"
#include "OstrelEngine/Full/LiveSection.h"
#include "OstrelEngine/Full/SkinScope.h"
#include "OstrelEngine/Full/SkinVariables.h"
#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Runtime/Skin.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class RepeatingTimer;

/// One running skin of the full dialect.
class FullSkin final : public Skin, public FullMeasureHost, public ActionHost, private MeasureActionHost {
public:
    /// Builds measures and meters; nothing has been updated yet. Platform and host outlive the skin. `cycles` is what
    /// the counter stood at before a refresh.
    static std::shared_ptr<FullSkin> create(
        PackSkin skin, const Platform& platform, FullSkinHost& host, std::int64_t cycles = 0);
    ~FullSkin() override;

    /// The window has got a place, other screens are there.
    void placeDidChange();
    /// A bang from elsewhere, references resolved.
    bool runBang(const BangCall& call);

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
    bool handleMouseEvent(MouseEventKind, Point, std::optional<std::string_view>) override { return false; }
    void submitInputText(std::string_view measureName, std::string_view value) override;
    void dismissInputText(std::string_view measureName) override;

    // FullMeasureHost, ActionHost
    const PackFolders& folders() const override { return skin_.folders; }
    const Platform& platform() const override { return platform_; }
    void log(LogLevel level, std::string_view section, std::string_view text) override;
    bool isAllowed(Permission permission, std::string_view detail) override;
    void runAction(const BaseMeasure& measure, std::string_view action) override;
    std::string resolved(const BaseMeasure& measure, std::string_view raw) const override;
    std::int64_t cycleCount() const override { return cycleCount_; }
    void valueDidArrive(BaseMeasure& measure) override;
    ScriptHost& scriptHost() override;

    FullSkinHost& host() const override { return host_; }
    const SkinVariables& variableTable() const override { return variables_; }
    void setVariable(std::string_view name, std::string_view value) override;
    void setOption(const SectionChoice& sections, std::string_view key, std::string_view value) override;
    void switchMeters(const SectionChoice& meters, Switch shown) override;
    void moveMeter(std::string_view meter, double x, double y) override;
    void updateMeters(const SectionChoice& meters) override;
    void switchMeasures(const SectionChoice& measures, Switch enabled) override;
    void pauseMeasures(const SectionChoice& measures, Switch paused) override;
    void updateMeasures(const SectionChoice& measures) override;
    void commandMeasure(std::string_view measure, std::string_view arguments) override;
    void update() override;
    void redraw() override;

private:
    enum class Cause { Tick, Bang };

    FullSkin(PackSkin skin, const Platform& platform, FullSkinHost& host, std::int64_t cycles);

    void build();
    void readSkinOptions();
    void armTimer();
    void updateMeasure(std::size_t position, Cause cause);
    void updateMeter(std::size_t position, Cause cause);
    void readMeasureState(std::size_t position);
    void readMeterState(std::size_t position);
    void fitWindow();
    void publish();
    void runSkinAction(const CaseKey& key);
    std::vector<std::size_t> chosenMeasures(const SectionChoice& choice) const;
    std::vector<std::size_t> chosenMeters(const SectionChoice& choice) const;

    // MeasureActionHost
    const FormulaNames& measureNames() const override;
    void runMeasureAction(const BaseMeasure& measure, std::string_view action) override;
    void logMeasure(const BaseMeasure& measure, std::string_view text) override;

    PackSkin skin_;
    const Platform& platform_;
    FullSkinHost& host_;
    mutable std::optional<SkinConfig> config_;

    LiveSections sections_;
    SkinVariables variables_;
    FullMeasureTable measures_;
    FullMeterTable meters_;
    FullLayout layout_;
    SkinScope scope_;
    FullActions actions_;
    FullMeterContext meterContext_;

    double updateIntervalSeconds_ = 1;
    int defaultDivider_ = 1;
    bool isWindowDynamic_ = false;
    Size fixedSize_;
    Size windowSize_;
    std::vector<Drawable> drawables_;
    std::unique_ptr<RepeatingTimer> timer_;
    int tickCount_ = 0;
    std::int64_t cycleCount_ = 0;
    int updateDepth_ = 0;
    bool isRunning_ = false;
};

} // namespace Ostrel
