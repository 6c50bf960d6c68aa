#include "OstrelEngine/Runtime/SkinRuntime.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Actions/MouseVariables.h"
#include "OstrelEngine/Measures/InputTextMeasure.h"
#include "OstrelEngine/Measures/MeasureFactory.h"
#include "OstrelEngine/Measures/MousePluginMeasure.h"
#include "OstrelEngine/Measures/NowPlayingMeasure.h"
#include "OstrelEngine/Measures/ScriptMeasure.h"
#include "OstrelEngine/Meters/MeterFactory.h"
#include "OstrelEngine/Meters/Text/FontRegistry.h"
#include "OstrelEngine/Runtime/OptionResolver.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"

#include <functional>
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

std::shared_ptr<SkinRuntime> SkinRuntime::create(SkinConfig config, const Platform& platform) {
    const std::shared_ptr<SkinRuntime> runtime(new SkinRuntime(std::move(config), platform));
    runtime->connectMeasures();
    return runtime;
}

SkinRuntime::SkinRuntime(SkinConfig config, const Platform& platform)
    : config_(std::move(config))
    , mainQueue_(platform.mainQueue)
    , updateIntervalSeconds_(updateInterval(config_.rainmeterOptions))
    , runtimeVariables_(config_.variables)
    , expressions_(runtimeVariables_, measures_)
    , bindings_(meters_, measures_)
    , dynamicOptions_(meters_, measures_, expressions_)
    , layout_(meters_, bindings_, expressions_, runtimeVariables_, windowSize(config_.rainmeterOptions))
    , publication_(platform.clock, meters_, bindings_, dynamicOptions_, layout_)
    , groups_(meters_, measures_)
    , parts_{config_.filePath, runtimeVariables_, measures_, meters_, expressions_, layout_, publication_,
          platform.workspace}
    , liveOptions_(parts_, groups_)
    , runner_(bangs_)
    , measureActions_(measures_, expressions_, runner_)
    , bangs_(parts_, *this, liveOptions_, groups_, measureActions_) {
    liveOptions_.onMeasureOptionChange = [this](std::size_t position) { measureActions_.forgetCommits(position); };
    liveOptions_.onStateChange = [this] {
        if (onStateDidChange)
            onStateDidChange(snapshotState());
    };
    buildMeasures(platform);
    buildMeters(platform);
    layout_.resolveLayout();
}

SkinRuntime::~SkinRuntime() = default;

void SkinRuntime::buildMeasures(const Platform& platform) {
    for (const auto& definition : config_.measures)
        measures_.add(MeasureFactory::create(definition, config_.filePath, platform));
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

/// Once the runtime is owned, since measures hold it weakly.
void SkinRuntime::connectMeasures() {
    for (const auto& measure : measures_.all())
        measure->resolveMeasureReferences(weak_from_this());
    for (std::size_t i = 0; i < measures_.count(); ++i) {
        auto* const measure = &measures_.at(i);
        if (auto* input = dynamic_cast<InputTextMeasure*>(measure))
            connectInput(*input);
        else if (auto* nowPlaying = dynamic_cast<NowPlayingMeasure*>(measure))
            nowPlaying->onTrackChangeAction = actionHandler();
        else if (auto* script = dynamic_cast<ScriptMeasure*>(measure))
            script->onAction = actionHandler();
        else if (dynamic_cast<MousePluginMeasure*>(measure))
            mouseMeasures_.push_back(i);
    }
}

void SkinRuntime::connectInput(InputTextMeasure& measure) {
    measure.onAction = actionHandler();
    measure.onInputRequested = [weak = weak_from_this()](const InputTextPresentation& presentation) {
        if (const auto runtime = weak.lock(); runtime && runtime->onInputTextPrompt)
            runtime->onInputTextPrompt(presentation);
    };
    measure.onInputDismissRequested = [weak = weak_from_this()] {
        if (const auto runtime = weak.lock(); runtime && runtime->onInputTextPrompt)
            runtime->onInputTextPrompt(std::nullopt);
    };
}

std::function<void(std::string_view)> SkinRuntime::actionHandler() {
    return [weak = weak_from_this()](std::string_view action) {
        if (const auto runtime = weak.lock())
            runtime->executeActionString(action);
    };
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
        if (const auto runtime = weak.lock())
            runtime->performUpdate();
    });
}

void SkinRuntime::stop() {
    if (std::exchange(isStopping_, true))
        return;
    executeRainmeterAction("OnCloseAction"_key);
    timer_.reset();
    if (onInputTextPrompt)
        onInputTextPrompt(std::nullopt);
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
    publishDrawables(Publication::Force::No);
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

void SkinRuntime::submitInputText(std::string_view measureName, std::string_view value) {
    const SkinAtWork work(config_.filePath.c_str());
    if (auto* input = dynamic_cast<InputTextMeasure*>(measure(measureName)))
        input->submitInput(value);
}

void SkinRuntime::dismissInputText(std::string_view measureName) {
    const SkinAtWork work(config_.filePath.c_str());
    if (auto* input = dynamic_cast<InputTextMeasure*>(measure(measureName)))
        input->dismissInput();
}

void SkinRuntime::publishDrawables(Publication::Force force) {
    publication_.publishDrawables(force, onUpdate);
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
