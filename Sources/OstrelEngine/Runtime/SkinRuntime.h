#pragma once

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelEngine/Actions/ActionRunner.h"
#include "OstrelEngine/Actions/BangOperations.h"
#include "OstrelEngine/Actions/MeasureActions.h"
#include "OstrelEngine/Actions/MeterPointer.h"
#include "OstrelEngine/Actions/MouseEvents.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Measures/MeasureHost.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"
#include "OstrelEngine/Meters/MeterProtocol.h"
#include "OstrelEngine/Runtime/DynamicOptions.h"
#include "OstrelEngine/Runtime/GroupIndex.h"
#include "OstrelEngine/Runtime/LayoutResolver.h"
#include "OstrelEngine/Runtime/LiveOptions.h"
#include "OstrelEngine/Runtime/MeasureTable.h"
#include "OstrelEngine/Runtime/MeterBindings.h"
#include "OstrelEngine/Runtime/MeterTable.h"
#include "OstrelEngine/Runtime/Publication.h"
#include "OstrelEngine/Runtime/RuntimeExpressions.h"
#include "OstrelEngine/Runtime/Skin.h"
#include "OstrelEngine/Runtime/SkinHost.h"
#include "OstrelEngine/Runtime/SkinParts.h"
#include "OstrelEngine/Runtime/WidgetRuntimeState.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class HostStatistics;
class MainQueue;
class RepeatingTimer;
struct Platform;

/// One running skin of the base dialect.
class SkinRuntime final : public Skin, private MeasureHost, private PointerClient, private LiveOptionsClient {
public:
    /// Builds measures and meters and lays them out once; nothing has ticked yet. Platform and host outlive the skin.
    static std::shared_ptr<SkinRuntime> create(SkinConfig config, const Platform& platform, SkinHost& host);
    ~SkinRuntime() override;

    /// Variables, visibility and the measures' own state survive a stop.
    void start() override;
    void stop() override;
    void performUpdate() override;

    const SkinConfig& config() const override { return config_; }
    double updateIntervalSeconds() const override { return updateIntervalSeconds_; }
    int tickCount() const override { return tickCount_; }
    Size widgetSize() const override { return layout_.widgetSize(); }
    const std::vector<std::shared_ptr<MeterRenderer>>& meters() const override { return meters_.all(); }
    bool isMeterVisible(std::string_view name) const override { return meters_.isVisible(name); }
    std::vector<MeasureValue> boundValues(const MeterRenderer& meter) override;
    const Options& variables() const override { return runtimeVariables_; }
    const std::vector<std::unique_ptr<BaseMeasure>>& allMeasures() const override { return measures_.all(); }
    BaseMeasure* measure(std::string_view name) const override { return measures_.find(name); }

    WidgetRuntimeState snapshotState() const override;
    /// Takes over all variables, and the visibility of meters that exist. The next publication shows it.
    void applyState(const WidgetRuntimeState& state) override;

    bool executeActionString(std::string_view action) override;
    /// Runs the actions that measures have for the mouse. The source is the meter that the pointer belongs to, if any.
    /// True when one of them handled something.
    bool handleMouseEvent(MouseEventKind kind, Point point, std::optional<std::string_view> sourceMeterName);
    void redraw() override { publication_.publishDrawables(Publication::Force::Yes); }
    std::unique_ptr<PointerRules> makePointerRules(const std::vector<Drawable>& shown) override;
    void submitInputText(std::string_view measureName, std::string_view value) override;
    void dismissInputText(std::string_view measureName) override;

private:
    SkinRuntime(SkinConfig config, const Platform& platform, SkinHost& host);

    void buildMeasures(const Platform& platform);
    void buildMeters(const Platform& platform);
    void connectMeasures();

    // MeasureHost
    void runAction(const BaseMeasure&, std::string_view action) override { executeActionString(action); }
    void promptInput(const std::optional<InputTextPresentation>& presentation) override;
    // PointerClient
    void runPointerAction(const std::string& action) override;
    void pointerDidAct(MouseEventKind kind, Point point, const std::optional<std::string>& sourceMeterName) override;
    void commandScroll(WidgetCommandScrollDirection direction) override;
    // LiveOptionsClient
    void liveStateDidChange() override { host_.stateDidChange(snapshotState()); }
    void measureOptionDidChange(std::size_t position) override { measureActions_.forgetCommits(position); }

    bool shouldUpdateMeasure(std::size_t position);
    bool isMeasureDisabledByOption(const BaseMeasure& measure);
    bool isMeasureEnabledForActions(std::size_t position);
    void executeRainmeterAction(const CaseKey& key);

    SkinConfig config_;
    SkinHost& host_;
    MainQueue& mainQueue_;
    HostStatistics& hostStatistics_;
    double updateIntervalSeconds_;
    Options runtimeVariables_;
    MeasureTable measures_;
    MeterTable meters_;
    RuntimeExpressions expressions_;
    MeterBindings bindings_;
    DynamicOptions dynamicOptions_;
    LayoutResolver layout_;
    Publication publication_;
    GroupIndex groups_;
    SkinParts parts_;
    LiveOptions liveOptions_;
    // Actions run bangs, bangs update measures, and measures run actions.
    ActionRunner runner_;
    MeasureActions measureActions_;
    BangOperations bangs_;
    /// Those whose actions follow the mouse, in file order.
    std::vector<std::size_t> mouseMeasures_;
    std::unique_ptr<RepeatingTimer> timer_;
    int tickCount_ = 0;
    bool isStopping_ = false;
};

} // namespace Ostrel
