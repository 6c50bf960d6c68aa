#include "OstrelEngine/Measures/Full/LuaState.h"

#include "OstrelEngine/Measures/Full/LuaEngine.h"
#include "OstrelEngine/Measures/Full/LuaLibraries.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <locale.h>
#include <utility>

namespace Ostrel {

namespace {

/// Instructions between two looks at the clock.
constexpr int HookInterval = 200;
/// Calls from script to skin to script. Each has a share of the stack.
constexpr int MaxNesting = 5;
/// Bytes of the machine's stack that all nested calls may use together.
constexpr std::uintptr_t MaxStack = 3U << 20;
constexpr std::size_t MaxResults = 16;
constexpr char ByteCodeMark = '\x1B';

/// Of the main thread, over all scripts.
int nesting = 0;
std::uintptr_t stackBase = 0;

std::uintptr_t stackPosition() {
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
}

locale_t plainLocale() {
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return plain;
}

void push(lua_State* lua, const ScriptValue& value) {
    if (const auto* text = std::get_if<std::string>(&value))
        lua_pushlstring(lua, text->data(), text->size());
    else if (const auto* number = std::get_if<double>(&value))
        lua_pushnumber(lua, *number);
    else if (const auto* truth = std::get_if<bool>(&value))
        lua_pushboolean(lua, *truth);
    else
        lua_pushnil(lua);
}

ScriptValue valueAt(lua_State* lua, int index) {
    switch (lua_type(lua, index)) {
    case LUA_TBOOLEAN:
        return lua_toboolean(lua, index) != 0;
    case LUA_TNUMBER:
        return lua_tonumber(lua, index);
    case LUA_TSTRING: {
        std::size_t size = 0;
        const char* text = lua_tolstring(lua, index, &size);
        return std::string(text, size);
    }
    default:
        return std::monostate();
    }
}

/// Errors with file and line of the script, whether a function or the hook asks: for a hook the script is level 0.
void failAtLine(lua_State* lua, const char* message) {
    lua_Debug place;
    const bool isScript = lua_getstack(lua, 0, &place) != 0 && lua_getinfo(lua, "S", &place) != 0 && *place.what != 'C';
    luaL_where(lua, isScript ? 0 : 1);
    lua_pushstring(lua, message);
    lua_concat(lua, 2);
    lua_error(lua);
}

std::string errorText(lua_State* lua) {
    std::size_t size = 0;
    // Numbers are not turned into text: that allocates, and nothing catches the error of it here.
    const char* text = lua_type(lua, -1) == LUA_TSTRING ? lua_tolstring(lua, -1, &size) : nullptr;
    return text ? std::string(text, size)
                : std::string("error with a ") + lua_typename(lua, lua_type(lua, -1)) + " value";
}

} // namespace

/// What is asked of the state in one protected call.
struct LuaState::Task {
    enum class Kind { Prepare, Run, Call, Global, HasFunction, Properties } kind;
    std::string_view text = {};
    const std::string* name = nullptr;
    std::span<const ScriptValue> arguments = {};
    Outcome outcome = {};
    bool answer = false;
};

/// The limits of one call, which a call from within shares, and the number format that scripts expect.
class LuaState::Call {
public:
    explicit Call(LuaState& state)
        : state_(state)
        , formerLocale_(uselocale(plainLocale())) {
        if (nesting++ == 0)
            stackBase = stackPosition();
        if (state_.depth_++ > 0)
            return;
        state_.isExpired_ = false;
        state_.instructionsLeft_ = state_.limits_.instructions;
        state_.deadline_ = Clock::now()
            + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(state_.limits_.seconds));
        lua_sethook(state_.lua_, countHook, LUA_MASKCOUNT, HookInterval);
    }
    ~Call() {
        --nesting;
        --state_.depth_;
        uselocale(formerLocale_);
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    static bool isTooDeep() { return nesting > MaxNesting; }

private:
    LuaState& state_;
    locale_t formerLocale_;
};

std::unique_ptr<Script> LuaEngine::start(ScriptEnvironment& environment, const ScriptLimits& limits) {
    return LuaState::create(environment, limits);
}

std::unique_ptr<LuaState> LuaState::create(ScriptEnvironment& environment, const ScriptLimits& limits) {
    std::unique_ptr<LuaState> state(new LuaState(environment, limits));
    if (!state->lua_)
        return nullptr;
    Task task{.kind = Task::Kind::Prepare};
    return state->perform(task).error ? nullptr : std::move(state);
}

LuaState::LuaState(ScriptEnvironment& environment, const ScriptLimits& limits)
    : environment_(environment)
    , limits_(limits)
    , lua_(lua_newstate(allocate, this)) { }

LuaState::~LuaState() {
    if (lua_)
        lua_close(lua_);
}

LuaState& LuaState::of(lua_State* lua) {
    void* self = nullptr;
    lua_getallocf(lua, &self);
    return *static_cast<LuaState*>(self);
}

void* LuaState::allocate(void* self, void* block, std::size_t oldSize, std::size_t newSize) {
    auto& state = *static_cast<LuaState*>(self);
    if (newSize == 0) {
        std::free(block);
        state.memoryInUse_ -= oldSize;
        return nullptr;
    }
    if (newSize > oldSize && state.memoryInUse_ + (newSize - oldSize) > state.limits_.memory)
        return nullptr;
    void* moved = std::realloc(block, newSize);
    if (!moved)
        return nullptr;
    state.memoryInUse_ += newSize - oldSize;
    return moved;
}

void LuaState::countHook(lua_State* lua, lua_Debug*) {
    auto& state = of(lua);
    const int interval = lua_gethookcount(lua);
    if (interval != HookInterval && !state.isExpired_)
        lua_sethook(lua, countHook, LUA_MASKCOUNT, HookInterval);
    state.check(lua, interval);
}

void LuaState::check(lua_State* lua, long long instructions) {
    instructionsLeft_ -= instructions;
    if (!isExpired_ && instructionsLeft_ > 0 && Clock::now() < deadline_) {
        const auto here = stackPosition();
        if ((here < stackBase ? stackBase - here : here - stackBase) > MaxStack)
            failAtLine(lua, "stack overflow");
        return;
    }
    isExpired_ = true;
    // From now on at each instruction, so that no script that catches errors goes on.
    lua_sethook(lua, countHook, LUA_MASKCOUNT, 1);
    failAtLine(lua, "the script takes too long");
}

void LuaState::load(lua_State* lua, std::string_view code, const std::string& name) {
    if (code.starts_with(ByteCodeMark))
        luaL_error(lua, "%s: compiled code is not run", name.c_str());
    // The first line of a file may be for a shell.
    if (code.starts_with('#'))
        code.remove_prefix(std::min(code.find('\n'), code.size()));
    if (luaL_loadbuffer(lua, code.data(), code.size(), name.c_str()) != 0)
        lua_error(lua);
}

/// Runs within lua_cpcall: everything in here may run out of memory.
int LuaState::performProtected(lua_State* lua) {
    auto& task = *static_cast<Task*>(lua_touserdata(lua, 1));
    lua_settop(lua, 0);
    switch (task.kind) {
    case Task::Kind::Prepare:
        openLuaLibraries(lua);
        return 0;
    case Task::Kind::Properties:
        fillLuaProperties(lua);
        return 0;
    case Task::Kind::Run:
        load(lua, task.text, *task.name);
        break;
    default:
        lua_pushlstring(lua, task.text.data(), task.text.size());
        lua_gettable(lua, LUA_GLOBALSINDEX);
        break;
    }
    switch (task.kind) {
    case Task::Kind::HasFunction:
        task.answer = lua_isfunction(lua, -1);
        return 0;
    case Task::Kind::Global:
        break;
    case Task::Kind::Call:
        if (!lua_isfunction(lua, -1))
            luaL_error(lua, "there is no function %s", std::string(task.text).c_str());
        luaL_checkstack(lua, static_cast<int>(task.arguments.size()), "too many arguments");
        for (const auto& argument : task.arguments)
            push(lua, argument);
        [[fallthrough]];
    default:
        lua_call(lua, static_cast<int>(task.arguments.size()), LUA_MULTRET);
    }
    const int count = lua_gettop(lua);
    task.outcome.values.reserve(static_cast<std::size_t>(count));
    for (int i = 1; i <= count && task.outcome.values.size() < MaxResults; ++i)
        task.outcome.values.push_back(valueAt(lua, i));
    return 0;
}

Script::Outcome LuaState::perform(Task& task) {
    const Call call(*this);
    if (Call::isTooDeep()) {
        task.outcome.error = "scripts call each other too deep";
        return std::move(task.outcome);
    }
    const int top = lua_gettop(lua_);
    const int status = lua_cpcall(lua_, performProtected, &task);
    if (status != 0) {
        task.outcome.values.clear();
        task.outcome.error = errorText(lua_);
        task.outcome.wasCutOff = isExpired_ || status == LUA_ERRMEM;
    }
    lua_settop(lua_, top);
    return std::move(task.outcome);
}

Script::Outcome LuaState::run(std::string_view code, const std::string& name) {
    Task task{.kind = Task::Kind::Run, .text = code, .name = &name};
    return perform(task);
}

Script::Outcome LuaState::call(std::string_view function, std::span<const ScriptValue> arguments) {
    Task task{.kind = Task::Kind::Call, .text = function, .arguments = arguments};
    return perform(task);
}

bool LuaState::hasFunction(std::string_view name) {
    Task task{.kind = Task::Kind::HasFunction, .text = name};
    perform(task);
    return task.answer;
}

Script::Outcome LuaState::global(std::string_view name) {
    Task task{.kind = Task::Kind::Global, .text = name};
    return perform(task);
}

void LuaState::fillProperties() {
    Task task{.kind = Task::Kind::Properties};
    perform(task);
}

} // namespace Ostrel
