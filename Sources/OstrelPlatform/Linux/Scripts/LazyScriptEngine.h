#pragma once

#include "OstrelPlatform/ScriptEngine.h"

#include <memory>
#include <string>

namespace Ostrel {

/// Loads the interpreter when the first script starts.
class LazyScriptEngine final : public ScriptEngine {
public:
    /// `moduleFile` is the interpreter's module; empty means the one that was built or installed with this program.
    explicit LazyScriptEngine(std::string moduleFile = {});
    ~LazyScriptEngine() override;

    std::unique_ptr<Script> start(ScriptEnvironment& environment, const ScriptLimits& limits) override;

private:
    std::string moduleFile_;
    std::unique_ptr<ScriptEngine> engine_;
    bool tried_ = false;
};

} // namespace Ostrel
