#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/ScriptFiles.h"
#include "OstrelEngine/Measures/Full/ScriptHost.h"
#include "OstrelPlatform/ScriptEngine.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Runs the Lua file of `ScriptFile` in a state of its own. Its value is what the function `Update` returns: nothing, a
/// number, a text, or both. A command is a piece of Lua.
class FullScriptMeasure final : public FullMeasure, public SkinScript, private ScriptEnvironment {
public:
    FullScriptMeasure(const MeasureDefinition& definition, FullMeasureHost& host, const ScriptLimits& limits = {});
    ~FullScriptMeasure() override;

    void update() override;
    bool executeCommand(std::string_view code) override;
    SkinScript* script() override { return this; }

    void load() override;
    void initialize() override;
    std::string callFunction(std::string_view function, const std::vector<std::string>& arguments) override;
    std::string globalText(std::string_view name) override;

private:
    class Run;

    ScriptHost& skin() override { return host().scriptHost(); }
    const BaseMeasure& self() const override { return *this; }
    const BaseMeasure* measure(std::string_view name) const override { return host().measure(name); }
    std::string stringValue(const BaseMeasure& measure) const override;
    std::string replaceVariables(std::string_view text) override { return host().resolved(*this, text); }
    std::string absolutePath(std::string_view path) const override { return host().folders().absolutePath(path); }
    void print(std::string_view text) override { host().log(LogLevel::Notice, name(), text); }
    std::optional<std::string> readFile(std::string_view path, std::string& error) override;
    std::optional<std::string> readScript(std::string_view path, std::string& error) override;
    bool isWritable(std::string_view path, std::string& error) override;
    bool writeFile(std::string_view path, std::string_view bytes, std::string& error) override;
    bool removeFile(std::string_view path, std::string& error) override;
    bool renameFile(std::string_view from, std::string_view to, std::string& error) override;

    /// Loads and initializes at the first use; false when there is no script to run.
    bool isReady();
    std::unique_ptr<Script> start();
    /// The values of a call; absent, with the error in the log, when it failed.
    std::optional<std::vector<ScriptValue>> valuesOf(Script::Outcome outcome);
    ScriptValue argument(std::string_view text);
    std::string inlineText(std::string_view what, Script::Outcome outcome);
    void publishResult(std::span<const ScriptValue> values);

    ScriptLimits limits_;
    ScriptFiles files_;
    std::unique_ptr<Script> script_;
    /// What ScriptFile said when it was loaded.
    std::string file_;
    std::uint64_t seenOptions_ = 0;
    bool isLoaded_ = false;
    bool isInitialized_ = false;
    bool hasUpdate_ = false;
    bool hasStringFunction_ = false;
    int runs_ = 0;
    /// Calls in a row that a limit ended.
    int cutOffs_ = 0;
};

} // namespace Ostrel
