#include "OstrelEngine/Measures/Full/FullScriptMeasure.h"

#include "OstrelCore/Documents/TextDecoding.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelPlatform/Platform.h"

#include <utility>

namespace Ostrel {

namespace {

/// A script that spends its limits again and again would hold up the desktop for good.
constexpr int MaxCutOffs = 3;
constexpr int PlainDecimals = 5;
constexpr int ResultDecimals = 10;

std::optional<double> numberIn(std::string_view text) {
    text = trimmed(text);
    // Words such as "nan" are texts.
    return text.find_first_of("0123456789") == std::string_view::npos ? std::nullopt : parseDouble(text);
}

bool isQuoted(std::string_view text) {
    return text.size() >= 2 && text.front() == text.back() && (text.front() == '"' || text.front() == '\'');
}

} // namespace

/// While it lives the script runs, and what it asks of the skin keeps its order.
class FullScriptMeasure::Run {
public:
    explicit Run(FullScriptMeasure& measure)
        : measure_(measure)
        , skin_(measure.skin()) {
        ++measure_.runs_;
        skin_.scriptWillRun();
    }
    ~Run() {
        if (--measure_.runs_ == 0 && measure_.cutOffs_ >= MaxCutOffs)
            measure_.script_.reset();
        skin_.scriptDidRun();
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

private:
    FullScriptMeasure& measure_;
    ScriptHost& skin_;
};

FullScriptMeasure::FullScriptMeasure(
    const MeasureDefinition& definition, FullMeasureHost& host, const ScriptLimits& limits)
    : FullMeasure(definition, host)
    , limits_(limits)
    , files_(host.folders()) {
    publishText("", 0);
}

FullScriptMeasure::~FullScriptMeasure() = default;

void FullScriptMeasure::load() {
    if (std::exchange(isLoaded_, true))
        return;
    seenOptions_ = optionsRevision();
    file_ = text("ScriptFile"_key);
    isInitialized_ = false;
    hasUpdate_ = false;
    hasStringFunction_ = false;
    cutOffs_ = 0;
    script_ = start();
    if (!script_)
        return;
    std::string error;
    const auto code = readScript(file_, error);
    if (!code) {
        host().log(LogLevel::Error, name(), file_ + ": " + error);
        script_.reset();
        return;
    }
    const Run run(*this);
    valuesOf(script_->run(*code, "@" + lastPathComponent(normalizeSeparators(file_))));
}

std::unique_ptr<Script> FullScriptMeasure::start() {
    const auto path = host().folders().absolutePath(file_);
    if (file_.empty() || !host().isAllowed(Permission::Scripts, path))
        return nullptr;
    auto* engine = host().platform().scripts;
    auto script = engine ? engine->start(*this, limits_) : nullptr;
    if (!script)
        host().log(LogLevel::Error, name(), "scripts cannot run here");
    return script;
}

void FullScriptMeasure::initialize() {
    load();
    if (!script_ || std::exchange(isInitialized_, true))
        return;
    const Run run(*this);
    script_->fillProperties();
    if (script_->hasFunction("Initialize"))
        valuesOf(script_->call("Initialize", {}));
    // Some scripts define their functions only there.
    hasUpdate_ = script_->hasFunction("Update");
    hasStringFunction_ = script_->hasFunction("GetStringValue");
}

bool FullScriptMeasure::isReady() {
    initialize();
    return script_ != nullptr;
}

void FullScriptMeasure::update() {
    if (std::exchange(seenOptions_, optionsRevision()) != optionsRevision() && runs_ == 0
        && text("ScriptFile"_key) != file_)
        isLoaded_ = false;
    if (!isReady() || !hasUpdate_) {
        if (!script_ && cutOffs_ < MaxCutOffs)
            publishText("", 0);
        return;
    }
    const Run run(*this);
    if (const auto values = valuesOf(script_->call("Update", {})))
        publishResult(*values);
}

void FullScriptMeasure::publishResult(std::span<const ScriptValue> values) {
    std::optional<double> number;
    std::optional<std::string_view> text;
    for (const auto& value : values) {
        if (const auto* asNumber = std::get_if<double>(&value); asNumber && !number)
            number = *asNumber;
        else if (const auto* asText = std::get_if<std::string>(&value); asText && !text)
            text = *asText;
    }
    std::vector<ScriptValue> old;
    if (!text && hasStringFunction_) {
        old = valuesOf(script_->call("GetStringValue", {})).value_or(old);
        if (const auto* asText = old.empty() ? nullptr : std::get_if<std::string>(old.data()))
            text = *asText;
    }
    if (!text && number)
        publishNumber(*number);
    else if (text)
        publishText(*text, number ? *number : numberIn(*text).value_or(0));
    else
        publishText("", 0);
}

bool FullScriptMeasure::executeCommand(std::string_view code) {
    if (!isReady())
        return true;
    const Run run(*this);
    valuesOf(script_->run(code, "=command"));
    // A command may bring functions along.
    hasUpdate_ = hasUpdate_ || script_->hasFunction("Update");
    return true;
}

std::string FullScriptMeasure::callFunction(std::string_view function, const std::vector<std::string>& arguments) {
    if (!isReady())
        return {};
    std::vector<ScriptValue> values;
    values.reserve(arguments.size());
    for (const auto& text : arguments)
        values.push_back(argument(text));
    const Run run(*this);
    return inlineText(function, script_->call(function, values));
}

std::string FullScriptMeasure::globalText(std::string_view name) {
    if (!isReady())
        return {};
    const Run run(*this);
    return inlineText(name, script_->global(name));
}

ScriptValue FullScriptMeasure::argument(std::string_view text) {
    text = trimmed(text);
    if (isQuoted(text))
        return std::string(text.substr(1, text.size() - 2));
    if (text == "true" || text == "false")
        return text == "true";
    const auto number = text.starts_with('(') ? skin().formula(text) : numberIn(text);
    return number ? ScriptValue(*number) : ScriptValue();
}

std::string FullScriptMeasure::inlineText(std::string_view what, Script::Outcome outcome) {
    const auto values = valuesOf(std::move(outcome));
    if (!values)
        return {};
    const auto value = values->empty() ? ScriptValue() : values->front();
    if (const auto* text = std::get_if<std::string>(&value))
        return *text;
    if (const auto* number = std::get_if<double>(&value))
        return OptionValues::numberText(*number, ResultDecimals);
    if (const auto* truth = std::get_if<bool>(&value))
        return *truth ? "1" : "0";
    host().log(LogLevel::Error, name(), std::string(what) + " gives nothing");
    return {};
}

std::optional<std::vector<ScriptValue>> FullScriptMeasure::valuesOf(Script::Outcome outcome) {
    cutOffs_ = outcome.wasCutOff ? cutOffs_ + 1 : 0;
    if (!outcome.error)
        return std::move(outcome.values);
    host().log(LogLevel::Error, name(), *outcome.error);
    if (cutOffs_ == MaxCutOffs)
        host().log(LogLevel::Error, name(), "the script is stopped");
    return std::nullopt;
}

std::string FullScriptMeasure::stringValue(const BaseMeasure& measure) const {
    const auto& value = measure.value();
    if (value.preferStringValue || !value.stringValue.empty())
        return value.stringValue;
    auto text = OptionValues::numberText(value.numericValue, PlainDecimals);
    return value.textRule ? value.textRule->apply(text) : text;
}

std::optional<std::string> FullScriptMeasure::readFile(std::string_view path, std::string& error) {
    return files_.read(path, error);
}

std::optional<std::string> FullScriptMeasure::readScript(std::string_view path, std::string& error) {
    auto bytes = files_.read(path, error);
    return bytes ? std::optional(decodeText(std::move(*bytes))) : std::nullopt;
}

bool FullScriptMeasure::isWritable(std::string_view path, std::string& error) {
    return files_.isWritable(path, error);
}

bool FullScriptMeasure::writeFile(std::string_view path, std::string_view bytes, std::string& error) {
    return files_.write(path, bytes, error);
}

bool FullScriptMeasure::removeFile(std::string_view path, std::string& error) {
    return files_.remove(path, error);
}

bool FullScriptMeasure::renameFile(std::string_view from, std::string_view to, std::string& error) {
    return files_.rename(from, to, error);
}

} // namespace Ostrel
