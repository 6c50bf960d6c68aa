#pragma once

#include "OstrelPlatform/ScriptEngine.h"

#include <memory>

namespace Ostrel {

/// Lua 5.1. What links it links the interpreter.
class LuaEngine final : public ScriptEngine {
public:
    std::unique_ptr<Script> start(ScriptEnvironment& environment, const ScriptLimits& limits) override;
};

} // namespace Ostrel
