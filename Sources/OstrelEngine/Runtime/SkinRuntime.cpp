#include "OstrelEngine/Runtime/SkinRuntime.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Actions/MouseVariables.h"
#include "OstrelEngine/Measures/MeasureFactory.h"
#include "OstrelEngine/Meters/MeterFactory.h"
#include "OstrelEngine/Meters/Text/FontRegistry.h"
#include "OstrelEngine/Runtime/OptionResolver.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"

#include <utility>

namespace Ostrel {

namespace {

double updateInterval(const RainmeterOptions& options) {
    constexpr std::int64_t DefaultMilliseconds = 1000;
    return static_cast<double>(options.update > 0 ? options.update : DefaultMilliseconds) / 1000.0;
}

LayoutResolver::WindowSize windowSize(const RainmeterOptions& options) {
    return option(options.allOptions, "DynamicWindowSize"_key) == "1" ? LayoutResolver::WindowSize::Dynamic
                                                                      : LayoutResolver::WindowSize::Fixed;
}

const CaseKey& actionKey(MouseEventKind kind) {
    static constexpr CaseKey Keys[] = {"LeftMouseDownAction"_key, "LeftMouseDragAction"_key, "LeftMouseUpAction"_key,
        "MouseScrollUpAction"_key, "MouseScrollDownAction"_key};
    return Keys[static_cast<std::size_t>(kind)];
}

} // namespace

std::shared_ptr<SkinRuntime> SkinRuntime::create(SkinConfig config, const Platform& platform, SkinHost& host) {
    return std::shared_ptr<SkinRuntime>(new SkinRuntime(std::move(config), platform, host));
}

SkinRuntime::SkinRuntime(SkinConfig config, const Platform& platform, SkinHost& host)
    : config_(std::move(config))
    , host_(host)
    , mainQueue_(platform.mainQueue)
    , hostStatistics_(platform.hostStatistics)
    , updateIntervalSeconds_(updateInterval(config_.rainmeterOptions))
    , runtimeVariables_(config_.variables)
    , expressions_(runtimeVariables_, measures_)
    , bindings_(meters_, measures_)
    , dynamicOptions_(meters_, measures_, expressions_)
    , layout_(meters_, bindings_, expressions_, runtimeVariables_, windowSize(config_.rainmeterOptions))
    , publication_(platform.clock, host_, meters_, bindings_, dynamicOptions_, layout_)
    , groups_(meters_, measures_)
    , parts_{config_.filePath, runtimeVariables_, measures_, meters_, expressions_, layout_, publication_,
          platform.workspace}
    , liveOptions_(parts_, groups_, *this)
    , runner_(bangs_)
    , measureActions_(measures_, expressions_, runner_)
    , bangs_(parts_, host_, liveOptions_, groups_, measureActions_) {
    buildMeasures(platform);
    buildMeters(platform);
    layout_.resolveLayout();
    connectMeasures();
}

SkinRuntime::~SkinRuntime() = default;

void SkinRuntime::buildMeasures(const Platform& platform) {
    for (const auto& definition : config_.measures)
        measures_.add(MeasureFactory::create(definition, config_.filePath, platform, *this));
}

void SkinRuntime::buildMeters(const Platform& platform) {
    // Once for all of its texts, since the search lists every folder upward.
    FontRegistry::registerResourceFontsIfNeeded(config_.filePath, platform.fonts);
    for (const auto& definition : config_.meters) {
        auto options = OptionResolver::resolvedOptions(definition, config_.styles);
        const bool isHidden = expressions_.isSwitchedOn(option(options, "Hidden"_key));
        meters_.add(MeterFactory::create(definition, std::move(options), config_.filePath, platform), !isHidden);
    }
}

void SkinRuntime::connectMeasures() {
    for (std::size_t i = 0; i < measures_.count(); ++i) {
        measures_.at(i).resolveReferences();
        if (measures_.at(i).takesMouseEvents())
            mouseMeasures_.push_back(i);
    }
}

void SkinRuntime::promptInput(const std::optional<InputTextPresentation>& presentation) {
    host_.promptInput(presentation);
}

void SkinRuntime::start() {
    stop();
    tickCount_ = 0;
    publication_.restart();
    measureActions_.forgetAllCommits();
    layout_.markLayoutDirty();
    performUpdate();
    executeRainmeterAction("OnRefreshAction"_key);
    timer_ = mainQueue_.startRepeating(updateIntervalSeconds_, [weak = weak_from_this()] {
        if (const auto skin = weak.lock())
            skin->performUpdate();
    });
}

void SkinRuntime::stop() {
    if (std::exchange(isStopping_, true))
        return;
    executeRainmeterAction("OnCloseAction"_key);
    timer_.reset();
    host_.promptInput(std::nullopt);
    isStopping_ = false;
}

bool SkinRuntime::executeActionString(std::string_view action) {
    const SkinAtWork work(config_.filePath.c_str());
    return runner_.executeActionString(action);
}

void SkinRuntime::performUpdate() {
    const SkinAtWork work(config_.filePath.c_str());
    ++tickCount_;
    for (std::size_t i = 0; i < measures_.count(); ++i) {
        if (!shouldUpdateMeasure(i))
            continue;
        const bool changed = measures_.update(i);
        if (changed)
            publication_.markChanged();
        measureActions_.executeMeasureActions(i, changed);
    }
    publication_.publishDrawables(Publication::Force::No);
}

void SkinRuntime::executeRainmeterAction(const CaseKey& key) {
    if (const auto action = option(config_.rainmeterOptions.allOptions, key))
        executeActionString(*action);
}

bool SkinRuntime::shouldUpdateMeasure(std::size_t position) {
    const auto& controls = measures_.controls(position);
    const auto& measure = measures_.at(position);
    if (controls.forcedDisabled || controls.paused)
        return false;
    if (!controls.forcedEnabled && isMeasureDisabledByOption(measure))
        return false;
    // Every measure gets one update at the start, whatever its divider.
    if (tickCount_ == 1)
        return true;
    const int divider = measure.updateDivider();
    return divider >= 0 && (divider <= 1 || tickCount_ % divider == 0);
}

bool SkinRuntime::isMeasureDisabledByOption(const BaseMeasure& measure) {
    const auto text = option(measure.options(), "Disabled"_key);
    if (!text || text->empty())
        return false;
    return expressions_.evaluateBooleanExpressionWithMeasures(*text).value_or(false);
}

bool SkinRuntime::isMeasureEnabledForActions(std::size_t position) {
    const auto& controls = measures_.controls(position);
    if (controls.forcedDisabled || controls.forcedEnabled)
        return controls.forcedEnabled;
    return !isMeasureDisabledByOption(measures_.at(position));
}

bool SkinRuntime::handleMouseEvent(MouseEventKind kind, Point point, std::optional<std::string_view> sourceMeterName) {
    const auto meter = sourceMeterName ? meters_.position(*sourceMeterName) : std::nullopt;
    bool handled = false;
    for (const auto position : mouseMeasures_) {
        const auto action = option(measures_.at(position).options(), actionKey(kind));
        if (!isMeasureEnabledForActions(position) || !action || trimmed(*action).empty())
            continue;
        // The action of an earlier measure may have moved the meter.
        const auto rect = meter ? std::optional(meters_.at(*meter).frame().rect()) : std::nullopt;
        const auto text = MouseVariables::substitute(*action, point, rect, MouseVariables::Decimals::asNeeded);
        handled = executeActionString(text) || handled;
    }
    return handled;
}

std::unique_ptr<PointerRules> SkinRuntime::makePointerRules(const std::vector<Drawable>& shown) {
    return std::make_unique<MeterPointer>(shown, std::shared_ptr<PointerClient>(shared_from_this(), this));
}

// What a user does is a wake of its own: a measure that an action updates sees the host as it is now.
void SkinRuntime::runPointerAction(const std::string& action) {
    hostStatistics_.beginWake();
    executeActionString(action);
}

void SkinRuntime::pointerDidAct(MouseEventKind kind, Point point, const std::optional<std::string>& sourceMeterName) {
    hostStatistics_.beginWake();
    handleMouseEvent(kind, point, sourceMeterName);
}

/// Acts on the skin as a whole.
void SkinRuntime::commandScroll(WidgetCommandScrollDirection direction) {
    hostStatistics_.beginWake();
    const auto& options = config_.rainmeterOptions.allOptions;
    const auto action = direction == WidgetCommandScrollDirection::up ? option(options, "MouseScrollUpAction"_key)
                                                                      : option(options, "MouseScrollDownAction"_key);
    if (const auto text = trimmed(action.value_or("")); !text.empty())
        executeActionString(text);
}

void SkinRuntime::submitInputText(std::string_view measureName, std::string_view value) {
    const SkinAtWork work(config_.filePath.c_str());
    hostStatistics_.beginWake();
    if (auto* asking = measure(measureName))
        asking->submitInput(value);
}

void SkinRuntime::dismissInputText(std::string_view measureName) {
    const SkinAtWork work(config_.filePath.c_str());
    hostStatistics_.beginWake();
    if (auto* asking = measure(measureName))
        asking->dismissInput();
}

std::vector<MeasureValue> SkinRuntime::boundValues(const MeterRenderer& meter) {
    for (std::size_t i = 0; i < meters_.count(); ++i) {
        if (&meters_.at(i) != &meter)
            continue;
        const auto values = bindings_.values(i);
        return {values.begin(), values.end()};
    }
    return {};
}

WidgetRuntimeState SkinRuntime::snapshotState() const {
    WidgetRuntimeState state;
    for (const auto& [name, value, hash] : runtimeVariables_)
        state.variables[name] = value;
    state.meterVisibility = meters_.visibility();
    return state;
}

void SkinRuntime::applyState(const WidgetRuntimeState& state) {
    for (const auto& [name, value] : state.variables) {
        const auto* current = runtimeVariables_.find(name);
        const bool isDifferent = !current || *current != value;
        if (isDifferent && !layout_.needsResolution() && layout_.shouldVariableTriggerLayout(name))
            layout_.markLayoutDirty();
        runtimeVariables_.set(name, value);
    }
    for (const auto& [name, isVisible] : state.meterVisibility)
        meters_.setVisible(name, isVisible);
}

} // namespace Ostrel
