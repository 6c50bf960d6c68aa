#pragma once

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelEngine/Actions/PointerRules.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Measures/InputTextPresentation.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"
#include "OstrelEngine/Meters/MeterProtocol.h"
#include "OstrelEngine/Runtime/WidgetRuntimeState.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// One running skin of either dialect: its measures, meters and variables, the tick that updates them and the
/// publications that come of it. Its owner is the widget's controller; timers and measures hold it weakly. Main thread.
class Skin : public InputAnswers, public std::enable_shared_from_this<Skin> {
public:
    ~Skin() override = default;

    /// Runs the first tick and arms the timer. A running skin is stopped first.
    virtual void start() = 0;
    virtual void stop() = 0;
    /// One tick: every measure that is due, then at most one publication.
    virtual void performUpdate() = 0;

    virtual const SkinConfig& config() const = 0;
    /// 0 for a skin that has no timer.
    virtual double updateIntervalSeconds() const = 0;
    /// Ticks since `start`; the first has count 1.
    virtual int tickCount() const = 0;
    /// The canvas size that the skin wants, neither bounded nor rounded.
    virtual Size widgetSize() const = 0;
    /// In file order, which is the drawing order.
    virtual const std::vector<std::shared_ptr<MeterRenderer>>& meters() const = 0;
    /// True when there is no such meter.
    virtual bool isMeterVisible(std::string_view name) const = 0;
    /// The values that a meter of this skin shows.
    virtual std::vector<MeasureValue> boundValues(const MeterRenderer& meter) = 0;
    virtual const Options& variables() const = 0;
    /// In file order.
    virtual const std::vector<std::unique_ptr<BaseMeasure>>& allMeasures() const = 0;
    /// Null when there is none of that name, which may be in any case.
    virtual BaseMeasure* measure(std::string_view name) const = 0;

    virtual WidgetRuntimeState snapshotState() const = 0;
    virtual void applyState(const WidgetRuntimeState& state) = 0;

    /// Runs an action string; true when something was handled.
    virtual bool executeActionString(std::string_view action) = 0;
    /// Publishes what stands now, without an update.
    virtual void redraw() = 0;
    /// What the pointer does to this skin; null where it does nothing. `shown` is the list that a host shows, which
    /// changes with every publication, also in the middle of a call, and outlives the rules. The rules hold the skin
    /// weakly: a late event of a skin that is gone goes nowhere.
    virtual std::unique_ptr<PointerRules> makePointerRules(const std::vector<Drawable>&) { return nullptr; }
};

} // namespace Ostrel
