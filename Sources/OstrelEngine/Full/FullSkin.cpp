#include "OstrelEngine/Full/FullSkin.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelDialect/PackReader.h"
#include "OstrelEngine/Full/FullPointer.h"
#include "OstrelEngine/Full/FullScriptHost.h"
#include "OstrelEngine/Measures/Full/FullMeasureFactory.h"
#include "OstrelEngine/Measures/Full/ScriptHost.h"
#include "OstrelEngine/Meters/Full/FullMeterFactory.h"
#include "OstrelEngine/Meters/Text/FontRegistry.h"
#include "OstrelEngine/Runtime/GroupNames.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Ostrel {

namespace {

/// What the user has typed, while the action for it runs.
class InputValues final : public EventValues {
public:
    explicit InputValues(std::string_view input)
        : input_(input) { }
    std::optional<std::string> value(std::string_view name) const override {
        return equalsIgnoringCase(name, "UserInput") ? std::optional(input_) : std::nullopt;
    }

private:
    std::string input_;
};

/// `!Update` within the actions of an update.
constexpr int MaxCycleDepth = 16;
constexpr int MaxUpdateDepth = 16;
constexpr double ShortestUpdate = 16;
constexpr double DefaultUpdate = 1000;

/// Hands options to a measure or a meter as they are resolved.
template <typename Item> class ItemTarget final : public OptionTarget {
public:
    explicit ItemTarget(Item& item)
        : item_(item) { }
    void setOption(std::string_view key, std::string_view value) override { item_.setOption(key, value); }
    void removeOption(std::string_view key) override { item_.removeOption(key); }

private:
    Item& item_;
};

bool isOn(std::string_view text) {
    return OptionValues::isOn(text).value_or(false);
}

/// All options of an action timer but the general ones are its actions.
LiveSection::Actions actionsOf(const PackSection& section) {
    const auto plugin = option(section.options, "Plugin"_key).value_or("");
    const bool isTimer
        = section.kind == PackSection::Kind::Measure && FullMeasureFactory::pluginName(plugin) == "ACTIONTIMER";
    return isTimer ? LiveSection::Actions::All : LiveSection::Actions::ByName;
}

} // namespace

std::shared_ptr<FullSkin> FullSkin::create(
    PackSkin skin, const Platform& platform, FullSkinHost& host, std::int64_t cycles) {
    const std::shared_ptr<FullSkin> created(new FullSkin(std::move(skin), platform, host, cycles));
    for (const auto& measure : created->measures_.all())
        measure->resolveReferences();
    return created;
}

FullSkin::FullSkin(PackSkin skin, const Platform& platform, FullSkinHost& host, std::int64_t cycles)
    : skin_(std::move(skin))
    , platform_(platform)
    , host_(host)
    , log_(host, platform.clock)
    , variables_(skin_.folders, skin_.variables)
    , measureNames_(measures_)
    , layout_(meters_)
    , scope_(variables_, measures_, layout_, skin_.folders)
    , actions_(*this, scope_)
    , meterContext_{skin_.folders, platform_}
    , cycleCount_(cycles) {
    scriptHost_ = std::make_unique<FullScriptHost>(FullSkinParts{
        *this, host_, sections_, variables_, measures_, measureNames_, meters_, layout_, scope_, actions_});
    variables_.setPlace(host_.place(), windowSize_);
    FontRegistry::registerResourceFontsIfNeeded(skin_.folders.skinFile, platform_.fonts);

    // Styles and meters as styles may stand anywhere, so all are there before the first is read.
    sections_.reserve(skin_.sections.size());
    for (const auto& section : skin_.sections)
        sections_.add(LiveSection(section.name, section.options, actionsOf(section)));
    readSkinOptions();
    buildBackground();
    for (std::size_t i = 0; i < skin_.sections.size(); ++i) {
        if (skin_.sections[i].kind == PackSection::Kind::Measure)
            buildMeasure(i);
        else if (skin_.sections[i].kind == PackSection::Kind::Meter)
            buildMeter(i);
    }
    mouseActions_.setOwnerCount(meters_.count() + 1);
    for (std::size_t i = 0; i < measures_.count(); ++i)
        readMeasureState(i);
    for (std::size_t i = 0; i < meters_.count(); ++i) {
        meters_.entry(i).meter->takeWrittenSize();
        readMeterState(i);
    }
}

FullSkin::~FullSkin() = default;

void FullSkin::readSkinOptions() {
    for (std::size_t i = 0; i < skin_.sections.size(); ++i) {
        if (skin_.sections[i].kind == PackSection::Kind::Rainmeter)
            skinOptions_ = sections_.at(i).readAtLoad(scope_, sections_);
    }
    const auto number
        = [&](const CaseKey& key) { return OptionValues::number(option(skinOptions_, key).value_or("")); };
    const double milliseconds = number("Update"_key).value_or(DefaultUpdate);
    updateIntervalSeconds_ = milliseconds < 0 ? 0 : std::max(milliseconds, ShortestUpdate) / 1000;
    defaultDivider_ = OptionValues::integer(option(skinOptions_, "DefaultUpdateDivider"_key).value_or("")).value_or(1);
    isWindowDynamic_ = isOn(option(skinOptions_, "DynamicWindowSize"_key).value_or(""));
    const auto length = [&](const CaseKey& key) { return std::trunc(std::clamp(number(key).value_or(0), 0.0, 1e9)); };
    fixedSize_ = {length("SkinWidth"_key), length("SkinHeight"_key)};
    meterContext_.transitionUpdate = number("TransitionUpdate"_key).value_or(meterContext_.transitionUpdate);
}

void FullSkin::buildMeasure(std::size_t section) {
    MeasureDefinition definition;
    definition.sectionName = skin_.sections[section].name;
    definition.allOptions = sections_.at(section).readAtLoad(scope_, sections_);
    definition.measureType = trimmed(option(definition.allOptions, "Measure"_key).value_or(""));
    if (equalsIgnoringCase(definition.measureType, "Plugin"))
        definition.pluginName = std::string(option(definition.allOptions, "Plugin"_key).value_or(""));
    measures_.add(FullMeasureFactory::create(definition, *this), section);
}

void FullSkin::buildMeter(std::size_t section) {
    MeterDefinition definition;
    definition.sectionName = skin_.sections[section].name;
    auto options = sections_.at(section).readAtLoad(scope_, sections_);
    definition.meterType = trimmed(option(options, "Meter"_key).value_or(""));
    meters_.add(FullMeterFactory::create(definition, std::move(options), meterContext_), section);
}

void FullSkin::buildBackground() {
    constexpr int NoBackground = 1;
    const auto mode = OptionValues::integer(option(skinOptions_, "BackgroundMode"_key).value_or(""));
    if (mode.value_or(NoBackground) != NoBackground)
        background_ = FullMeterFactory::createBackground(skinOptions_, meterContext_);
}

const SkinConfig& FullSkin::config() const {
    if (!config_) {
        config_ = skinConfigAtLoad(skin_);
        // The background is drawn as the first of the meters.
        config_->rainmeterOptions.background.reset();
        config_->rainmeterOptions.backgroundMode = 1;
    }
    return *config_;
}

void FullSkin::placeDidChange() {
    variables_.setPlace(host_.place(), windowSize_);
}

void FullSkin::start() {
    stop();
    isRunning_ = true;
    tickCount_ = 0;
    hasWindowSize_ = false;
    placeDidChange();
    if (!std::exchange(areScriptsLoaded_, true)) {
        for (const auto& measure : measures_.all()) {
            if (auto* script = measure->script())
                script->load();
        }
    }
    runCycle();
    runSkinAction("OnRefreshAction"_key);
    actionsDidEnd();
    armTimer();
}

void FullSkin::stop() {
    if (std::exchange(isRunning_, false))
        runSkinAction("OnCloseAction"_key);
    timer_.reset();
    actions_.dropDelayed();
    host_.promptInput(std::nullopt);
}

void FullSkin::armTimer() {
    timer_.reset();
    if (!isRunning_ || updateIntervalSeconds_ <= 0)
        return;
    timer_ = platform_.mainQueue.startRepeating(updateIntervalSeconds_, [weak = weak_from_this()] {
        if (const auto skin = weak.lock())
            skin->performUpdate();
    });
}

void FullSkin::performUpdate() {
    const SkinAtWork work(skin_.folders.skinFile.c_str());
    runCycle();
    actionsDidEnd();
}

void FullSkin::update() {
    runCycle();
    if (timer_)
        armTimer();
}

void FullSkin::runCycle() {
    if (cycleDepth_ >= MaxCycleDepth) {
        log(LogLevel::Error, {}, "!Update runs itself without end");
        return;
    }
    ++cycleDepth_;
    ++tickCount_;
    for (std::size_t i = 0; i < measures_.count(); ++i)
        updateMeasure(i, Cause::Cycle);
    for (std::size_t i = 0; i < meters_.count(); ++i)
        updateMeter(i, Cause::Cycle);
    if (background_)
        background_->update({});
    if (!hasWindowSize_ || isWindowDynamic_)
        fitWindow();
    publish();
    runSkinAction("OnUpdateAction"_key);
    // The first cycle sees 0.
    ++cycleCount_;
    --cycleDepth_;
}

void FullSkin::updateMeasure(std::size_t position, Cause cause) {
    auto& entry = measures_.entry(position);
    if (cause == Cause::Cycle && !entry.divider.isDue())
        return;
    auto& measure = measures_.at(position);
    ItemTarget target(measure);
    sections_.at(entry.section).read(scope_, sections_, target);
    readMeasureState(position);
    if (auto* script = measure.script())
        script->initialize();
    if (entry.isPaused && cause == Cause::Cycle)
        return;
    if (entry.isDisabled) {
        if (cause == Cause::Cycle)
            measure.readAsZero();
        return;
    }
    if (updateDepth_ >= MaxUpdateDepth) {
        log(LogLevel::Error, measure.name(), "!UpdateMeasure runs itself without end");
        return;
    }
    ++updateDepth_;
    measure.update();
    entry.actions.run(measure, *this);
    --updateDepth_;
}

void FullSkin::readMeasureState(std::size_t position) {
    auto& entry = measures_.entry(position);
    const auto& measure = measures_.at(position);
    if (entry.optionsRevision == measure.optionsRevision())
        return;
    entry.optionsRevision = measure.optionsRevision();
    const auto text = [&](const CaseKey& key) { return option(measure.options(), key).value_or(""); };
    entry.divider.set(OptionValues::integer(text("UpdateDivider"_key)).value_or(defaultDivider_));
    if (const auto disabled = text("Disabled"_key); disabled != entry.disabledText) {
        entry.disabledText = disabled;
        setDisabled(entry, isOn(disabled));
    }
    if (const auto paused = text("Paused"_key); paused != entry.pausedText) {
        entry.pausedText = paused;
        entry.isPaused = isOn(paused);
    }
    entry.groups = GroupNames::parseGroups(text("Group"_key));
}

void FullSkin::setDisabled(FullMeasureEntry& entry, bool isDisabled) {
    if (std::exchange(entry.isDisabled, isDisabled) == isDisabled || isDisabled)
        return;
    entry.divider.restart();
    entry.actions.forgetMarks();
}

void FullSkin::updateMeter(std::size_t position, Cause cause) {
    auto& entry = meters_.entry(position);
    if (cause == Cause::Cycle && !entry.divider.isDue())
        return;
    auto& meter = *entry.meter;
    auto& section = sections_.at(entry.section);
    if (section.isToBeRead()) {
        layout_.endMove(position);
        ItemTarget target(meter);
        section.read(scope_, sections_, target);
    }
    readMeterState(position);
    const bool isRead = entry.updatedRevision != meter.optionsRevision();
    const bool isOther = meters_.holdValues(position, measures_) || isRead;
    if (isOther || meter.needsEveryUpdate()) {
        entry.updatedRevision = meter.optionsRevision();
        const Size before = meter.boxSize();
        meter.update(entry.held);
        if (isRead || meter.boxSize() != before)
            layout_.meterDidChange(position);
    }
    if (!entry.onUpdateAction.empty())
        actions_.run(std::string(entry.onUpdateAction), {section.name()});
}

void FullSkin::readMeterState(std::size_t position) {
    auto& entry = meters_.entry(position);
    const auto& meter = *entry.meter;
    if (entry.optionsRevision == meter.optionsRevision())
        return;
    entry.optionsRevision = meter.optionsRevision();
    const auto text = [&](const CaseKey& key) { return option(meter.options(), key).value_or(""); };
    entry.divider.set(OptionValues::integer(text("UpdateDivider"_key)).value_or(defaultDivider_));
    if (const auto hidden = text("Hidden"_key); hidden != entry.hiddenText) {
        entry.hiddenText = hidden;
        entry.isHidden = isOn(hidden);
    }
    entry.onUpdateAction = text("OnUpdateAction"_key);
    entry.groups = GroupNames::parseGroups(text("Group"_key));
    meters_.bind(position, measures_);
    layout_.meterDidChange(position);
}

void FullSkin::fitWindow() {
    hasWindowSize_ = true;
    Size extent = layout_.extent();
    if (background_) {
        const Size least = background_->boxSize();
        extent = {std::max(extent.width, least.width), std::max(extent.height, least.height)};
    }
    const Size size{fixedSize_.width > 0 ? fixedSize_.width : extent.width,
        fixedSize_.height > 0 ? fixedSize_.height : extent.height};
    if (size == windowSize_)
        return;
    windowSize_ = size;
    placeDidChange();
}

void FullSkin::publish() {
    layout_.apply();
    if (background_)
        background_->setFrame({0, 0, windowSize_.width, windowSize_.height});
    if (drawnRevision_ != layout_.shownRevision()) {
        drawnRevision_ = layout_.shownRevision();
        drawables_.clear();
        if (background_)
            drawables_.push_back({background_, {}});
        for (std::size_t i = 0; i < meters_.count(); ++i) {
            if (layout_.isDrawn(i))
                drawables_.push_back({meters_.entry(i).meter, {}});
        }
    }
    // Taken out meanwhile: what is shown may act on the skin and so publish again.
    auto drawables = std::exchange(drawables_, {});
    const auto revision = std::exchange(drawnRevision_, 0);
    host_.skinDidPublish(drawables);
    if (drawnRevision_ != 0)
        return;
    drawables_ = std::move(drawables);
    drawnRevision_ = revision;
}

void FullSkin::redraw() {
    // Within the first update the meters behind have no size yet; its end fits the window.
    const bool isDue = !hasWindowSize_ && cycleDepth_ == 0;
    if (isDue || isWindowDynamic_)
        fitWindow();
    publish();
}

void FullSkin::actionsDidEnd() {
    layout_.apply();
}

void FullSkin::runSkinAction(const CaseKey& key) {
    if (const auto action = skinOption(key))
        actions_.run(*action, {"Rainmeter"});
}

bool FullSkin::isMeterVisible(std::string_view name) const {
    const auto position = meters_.position(name);
    return !position || !meters_.entry(*position).isHidden;
}

std::vector<MeasureValue> FullSkin::boundValues(const MeterRenderer& meter) {
    for (std::size_t i = 0; i < meters_.count(); ++i) {
        if (meters_.entry(i).meter.get() == &meter)
            return meters_.entry(i).held;
    }
    return {};
}

std::unique_ptr<PointerRules> FullSkin::makePointerRules(const std::vector<Drawable>&) {
    return std::make_unique<FullPointer>(std::static_pointer_cast<FullSkin>(shared_from_this()));
}

bool FullSkin::executeActionString(std::string_view action) {
    const SkinAtWork work(skin_.folders.skinFile.c_str());
    const bool handled = actions_.runRaw(action, {});
    actionsDidEnd();
    return handled;
}

void FullSkin::focusDidChange(bool isFocused) {
    runSkinAction(isFocused ? "OnFocusAction"_key : "OnUnfocusAction"_key);
    actionsDidEnd();
}

bool FullSkin::runFromConfig(std::string_view config, std::string_view action) {
    std::string name(trimmed(config));
    std::ranges::replace(name, '/', '\\');
    return (name == "*" || equalsIgnoringCase(name, skin_.folders.config)) && executeActionString(action);
}

bool FullSkin::runBang(const BangCall& call) {
    const SkinAtWork work(skin_.folders.skinFile.c_str());
    const bool handled = actions_.runBang(call, {});
    actionsDidEnd();
    return handled;
}

bool FullSkin::runEventAction(std::string_view action, const ActionOrigin& origin) {
    const SkinAtWork work(skin_.folders.skinFile.c_str());
    const bool handled = actions_.run(action, origin);
    actionsDidEnd();
    return handled;
}

void FullSkin::submitInputText(std::string_view measureName, std::string_view value) {
    const SkinAtWork work(skin_.folders.skinFile.c_str());
    if (auto* input = measure(measureName))
        input->submitInput(value);
    actionsDidEnd();
}

void FullSkin::dismissInputText(std::string_view measureName) {
    if (auto* input = measure(measureName))
        input->dismissInput();
    actionsDidEnd();
}

void FullSkin::log(LogLevel level, std::string_view section, std::string_view text) {
    log_.write(level, section, text);
}

bool FullSkin::isAllowed(Permission permission, std::string_view detail) {
    return host_.isAllowed(permission, detail);
}

void FullSkin::runAction(const BaseMeasure& measure, std::string_view action) {
    actions_.run(action, {measure.name()});
    actionsDidEnd();
}

void FullSkin::runActionWithInput(const BaseMeasure& measure, std::string_view action, std::string_view input) {
    actions_.run(action, {measure.name(), std::make_shared<InputValues>(input)});
    actionsDidEnd();
}

std::string FullSkin::resolved(const BaseMeasure& measure, std::string_view raw) const {
    return scope_.resolveNow(raw, measure.name(), ReferenceKinds::All);
}

void FullSkin::promptInput(const std::optional<InputTextPresentation>& presentation) {
    host_.promptInput(presentation);
}

ScriptHost& FullSkin::scriptHost() {
    return *scriptHost_;
}

void FullSkin::runMeasureAction(const BaseMeasure& measure, std::string_view action) {
    actions_.run(action, {measure.name()});
}

void FullSkin::logMeasure(const BaseMeasure& measure, std::string_view text) {
    log(LogLevel::Error, measure.name(), text);
}

} // namespace Ostrel
