#pragma once

#include "OstrelPlatform/ScriptEngine.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <lua.hpp>

namespace Ostrel {

/// One state of the reference library for Lua 5.1, built so that its errors are C++ exceptions: what C++ functions hold
/// is let go when an error passes through them. Main thread.
class LuaState final : public Script {
public:
    /// Null when there is not even memory for an empty state.
    static std::unique_ptr<LuaState> create(ScriptEnvironment& environment, const ScriptLimits& limits);
    ~LuaState() override;
    LuaState(const LuaState&) = delete;
    LuaState& operator=(const LuaState&) = delete;

    Outcome run(std::string_view code, const std::string& name) override;
    Outcome call(std::string_view function, std::span<const ScriptValue> arguments) override;
    bool hasFunction(std::string_view name) override;
    Outcome global(std::string_view name) override;
    void fillProperties() override;
    std::size_t memoryInUse() const override { return memoryInUse_; }

    /// For functions that Lua calls.
    static LuaState& of(lua_State* lua);
    ScriptEnvironment& environment() { return environment_; }
    /// Errors when the call has spent its instructions, its time or its stack.
    void check(lua_State* lua, long long instructions);
    /// Leaves a chunk or errors; what begins with the mark of byte code is refused, since it can break memory safety.
    static void load(lua_State* lua, std::string_view code, const std::string& name);

    /// Files that the script holds open.
    int openFiles = 0;

private:
    using Clock = std::chrono::steady_clock;
    class Call;
    struct Task;

    LuaState(ScriptEnvironment& environment, const ScriptLimits& limits);
    Outcome perform(Task& task);
    static int performProtected(lua_State* lua);
    static void* allocate(void* self, void* block, std::size_t oldSize, std::size_t newSize);
    static void countHook(lua_State* lua, lua_Debug*);

    ScriptEnvironment& environment_;
    ScriptLimits limits_;
    std::size_t memoryInUse_ = 0;
    lua_State* lua_ = nullptr;
    /// Of the outermost call into this state.
    int depth_ = 0;
    long long instructionsLeft_ = 0;
    Clock::time_point deadline_;
    bool isExpired_ = false;
};

} // namespace Ostrel
