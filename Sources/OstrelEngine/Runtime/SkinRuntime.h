#pragma once

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelEngine/Actions/ActionRunner.h"
#include "OstrelEngine/Actions/BangOperations.h"
#include "OstrelEngine/Actions/MeasureActions.h"
#include "OstrelEngine/Actions/MouseEvents.h"
#include "OstrelEngine/Geometry.h"
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
#include "OstrelEngine/Runtime/SkinCallbacks.h"
#include "OstrelEngine/Runtime/SkinParts.h"
#include "OstrelEngine/Runtime/WidgetRuntimeState.h"

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace Ostrel {

class InputTextMeasure;
class MainQueue;
class RepeatingTimer;
struct Platform;

/// One running skin: its measures, meters and variables, the tick that updates them and the publications that come of
/// it. Main thread. A shared pointer only so that timers and measures can hold it weakly; its one owner is the widget's
/// controller.
class SkinRuntime final : public MeasuresOwner, public SkinCallbacks, public std::enable_shared_from_this<SkinRuntime> {
public:
    /// Builds measures and meters and lays them out once; nothing has ticked yet.
    static std::shared_ptr<SkinRuntime> create(SkinConfig config, const Platform& platform);
    ~SkinRuntime() override;

    /// Runs the first tick and arms the timer. A running skin is stopped first. Variables, visibility and the measures'
    /// own state survive a stop.
    void start();
    void stop();
    /// One tick: every measure that is due, then at most one publication.
    void performUpdate();

    const SkinConfig& config() const { return config_; }
    double updateIntervalSeconds() const { return updateIntervalSeconds_; }
    /// Ticks since `start`; the first has count 1.
    int tickCount() const { return tickCount_; }
    /// The canvas size that the skin wants, as it is computed: neither bounded nor rounded.
    Size widgetSize() const { return layout_.widgetSize(); }
    /// In file order, which is the drawing order.
    const std::vector<std::shared_ptr<MeterRenderer>>& meters() const { return meters_.all(); }
    /// True when there is no such meter.
    bool isMeterVisible(std::string_view name) const { return meters_.isVisible(name); }
    /// The values that a meter of this skin is bound to now.
    std::vector<MeasureValue> boundValues(const MeterRenderer& meter);
    const Options& variables() const { return runtimeVariables_; }
    /// In file order.
    const std::vector<std::unique_ptr<BaseMeasure>>& allMeasures() const { return measures_.all(); }
    BaseMeasure* measure(std::string_view name) const override { return measures_.find(name); }

    WidgetRuntimeState snapshotState() const;
    /// Takes over all variables, and the visibility of meters that exist. The next publication shows it.
    void applyState(const WidgetRuntimeState& state);

    /// Runs an action string; true when something was handled.
    bool executeActionString(std::string_view action);
    /// Runs the actions that measures have for the mouse. The source is the meter that the pointer belongs to, if any.
    /// True when one of them handled something.
    bool handleMouseEvent(MouseEventKind kind, Point point, std::optional<std::string_view> sourceMeterName);
    /// The answer to the field that `onInputTextPrompt` asked for, and its end without one.
    void submitInputText(std::string_view measureName, std::string_view value);
    void dismissInputText(std::string_view measureName);

private:
    SkinRuntime(SkinConfig config, const Platform& platform);

    void buildMeasures(const Platform& platform);
    void buildMeters(const Platform& platform);
    void connectMeasures();
    void connectInput(InputTextMeasure& measure);
    /// What a measure calls to run an action; does nothing once the skin is gone.
    std::function<void(std::string_view)> actionHandler();
    bool shouldUpdateMeasure(std::size_t position);
    bool isMeasureDisabledByOption(const BaseMeasure& measure);
    bool isMeasureEnabledForActions(std::size_t position);
    void executeRainmeterAction(const CaseKey& key);
    void publishDrawables(Publication::Force force);

    SkinConfig config_;
    MainQueue& mainQueue_;
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
