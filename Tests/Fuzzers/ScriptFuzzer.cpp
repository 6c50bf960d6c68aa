#include "OstrelEngine/Measures/Full/LuaEngine.h"
#include "OstrelEngine/Measures/Full/ScriptHost.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace Ostrel;

/// A skin in which everything is there and nothing happens; no file can be touched.
class EmptySkin final : public ScriptEnvironment, public ScriptHost {
public:
    ScriptHost& skin() override { return *this; }
    const BaseMeasure& self() const override { return measure_; }
    const BaseMeasure* measure(std::string_view) const override { return &measure_; }
    std::string stringValue(const BaseMeasure&) const override { return "text"; }
    std::string replaceVariables(std::string_view text) override { return std::string(text); }
    std::string absolutePath(std::string_view path) const override { return std::string(path); }
    void print(std::string_view) override { }
    std::optional<std::string> readFile(std::string_view path, std::string& error) override {
        return answer(path, error);
    }
    std::optional<std::string> readScript(std::string_view path, std::string& error) override {
        return answer(path, error);
    }
    bool isWritable(std::string_view, std::string&) override { return true; }
    bool writeFile(std::string_view, std::string_view, std::string&) override { return true; }
    bool removeFile(std::string_view, std::string& error) override { return !answer("", error); }
    bool renameFile(std::string_view, std::string_view, std::string&) override { return true; }

    void scriptWillRun() override { }
    void scriptDidRun() override { }
    void bang(const BaseMeasure&, std::string_view, const std::vector<std::string>&) override { }
    void action(const BaseMeasure&, std::string_view) override { }
    std::optional<std::string_view> variable(std::string_view name) override { return name; }
    std::optional<double> formula(std::string_view text) override {
        return text.empty() ? std::nullopt : std::optional(1.0);
    }
    std::optional<std::string> option(const BaseMeasure&, std::string_view name, bool) override {
        return std::string(name);
    }
    std::optional<std::string> option(std::size_t, std::string_view, bool) override { return std::nullopt; }
    std::optional<std::size_t> meter(std::string_view) const override { return 0; }
    const std::string& meterName(std::size_t) const override { return name_; }
    Rect meterOptionFrame(std::size_t) const override { return {}; }
    Rect meterFrame(std::size_t) const override { return {}; }
    void setMeterSide(std::size_t, Side, double) override { }
    Rect windowFrame() const override { return {}; }
    void moveWindow(double, double) override { }
    void fadeWindow(double, double) override { }

private:
    static std::optional<std::string> answer(std::string_view path, std::string& error) {
        error = "missing";
        return path.empty() ? std::nullopt : std::optional(std::string(path) + "\r\n1 2\n");
    }

    std::string name_ = "Meter";
    StubMeasure measure_{MeasureDefinition{"Measure", "Script", std::nullopt, {}}, {}};
};

} // namespace

/// The input is a script; its function Update runs twice.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    EmptySkin skin;
    LuaEngine engine;
    const auto script = engine.start(skin, {.memory = 4U << 20, .seconds = 0.2, .instructions = 200'000});
    if (!script)
        return 0;
    script->run({reinterpret_cast<const char*>(data), size}, "@fuzz");
    script->fillProperties();
    for (int i = 0; i < 2; ++i)
        script->call("Update", {});
    return 0;
}
