// What the sandbox adds to a bare call of the interpreter, and what a page costs beside bare PCRE2.
#include "OstrelEngine/Measures/Full/FullScriptMeasure.h"
#include "OstrelEngine/Measures/Full/WebPage.h"
#include "Support/ScriptedSkin.h"

#include <benchmark/benchmark.h>

#include <string>

#include <lua.hpp>

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

namespace Ostrel {

namespace {

constexpr const char* Update = "function Update() return 1 end";

void bareCall(benchmark::State& state) {
    lua_State* lua = luaL_newstate();
    if (luaL_dostring(lua, Update))
        state.SkipWithError("no script");
    for (auto _ : state) {
        lua_getglobal(lua, "Update");
        lua_pcall(lua, 0, 1, 0);
        benchmark::DoNotOptimize(lua_tonumber(lua, -1));
        lua_settop(lua, 0);
    }
    lua_close(lua);
}
BENCHMARK(bareCall);

void measureUpdate(benchmark::State& state) {
    ScriptedSkin skin;
    auto& measure = skin.script(Update);
    for (auto _ : state)
        measure.update();
}
BENCHMARK(measureUpdate);

/// A loop of 1000 calls, so that what remains is the call; the time is that of all of them.
void thousandOf(benchmark::State& state, const char* call) {
    ScriptedSkin skin;
    skin.variables["Name"] = "value";
    skin.addUpdated("M", "Calc", {{"Formula", "1"}});
    auto& measure = skin.script(
        "m = SKIN:GetMeasure('M')\nfunction Update() local m = m for i = 1, 1000 do " + std::string(call) + " end end");
    for (auto _ : state)
        measure.update();
}
BENCHMARK_CAPTURE(thousandOf, nothing, "");
BENCHMARK_CAPTURE(thousandOf, getVariable, "SKIN:GetVariable('Name')");
BENCHMARK_CAPTURE(thousandOf, getValue, "m:GetValue()");
BENCHMARK_CAPTURE(thousandOf, find, "string.find('some text here', 'te(x)t')");

/// Keeps an eye on the last state.
class WatchedEngine final : public ScriptEngine {
public:
    std::unique_ptr<Script> start(ScriptEnvironment& environment, const ScriptLimits& limits) override {
        auto script = engine_.start(environment, limits);
        last = script.get();
        return script;
    }
    Script* last = nullptr;

private:
    LuaEngine engine_;
};

void emptyState(benchmark::State& state) {
    WatchedEngine engine;
    for (auto _ : state) {
        ScriptedSkin skin;
        skin.ports.scripts = &engine;
        skin.script("");
        state.counters["bytes"] = static_cast<double>(engine.last->memoryInUse());
    }
}
BENCHMARK(emptyState);

constexpr int Items = 200;

std::string page() {
    std::string text = "<html>";
    for (int i = 0; i < Items; ++i)
        text += "<div class='item'><p>filler text</p><title>Item " + std::to_string(i) + "</title></div>\n";
    return text;
}

std::string pattern() {
    std::string text = "(?siU)";
    for (int i = 0; i < 90; ++i)
        text += "<title>(.*)</title>.*";
    return text;
}

void barePattern(benchmark::State& state) {
    const auto subject = page();
    const auto text = pattern();
    int error = 0;
    PCRE2_SIZE place = 0;
    for (auto _ : state) {
        auto* code = pcre2_compile(
            reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), PCRE2_UTF | PCRE2_UCP, &error, &place, nullptr);
        pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
        auto* match = pcre2_match_data_create_from_pattern(code, nullptr);
        benchmark::DoNotOptimize(
            pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(subject.data()), subject.size(), 0, 0, match, nullptr));
        pcre2_match_data_free(match);
        pcre2_code_free(code);
    }
}
BENCHMARK(barePattern);

/// One parent and 200 children.
void pageOfMeasures(benchmark::State& state) {
    const auto subject = page();
    std::vector<WebPart> parts{{.name = "P", .pattern = pattern()}};
    for (int i = 1; i <= Items; ++i) {
        auto& part = parts.emplace_back();
        part.index = i % 90;
        part.parent = 0;
    }
    for (auto _ : state) {
        auto fresh = parts;
        WebPage::take(subject, fresh);
        benchmark::DoNotOptimize(fresh.back().text.data());
    }
}
BENCHMARK(pageOfMeasures);

} // namespace

} // namespace Ostrel
