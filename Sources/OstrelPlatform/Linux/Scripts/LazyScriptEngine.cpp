#include "OstrelPlatform/Linux/Scripts/LazyScriptEngine.h"

#include "OstrelPlatform/Linux/ModuleLoader.h"

#include <utility>

namespace Ostrel {

namespace {

std::unique_ptr<ScriptEngine> load(const std::string& file) {
    const auto make = ModuleLoader::function<ScriptEngine* (*)()>(file, "ostrelMakeScriptEngine");
    return std::unique_ptr<ScriptEngine>(make ? make() : nullptr);
}

} // namespace

LazyScriptEngine::LazyScriptEngine(std::string moduleFile)
    : moduleFile_(std::move(moduleFile)) { }

LazyScriptEngine::~LazyScriptEngine() = default;

std::unique_ptr<Script> LazyScriptEngine::start(ScriptEnvironment& environment, const ScriptLimits& limits) {
    if (!std::exchange(tried_, true))
        engine_ = load(moduleFile_.empty() ? ModuleLoader::installedFile(OSTREL_SCRIPT_MODULE) : moduleFile_);
    return engine_ ? engine_->start(environment, limits) : nullptr;
}

} // namespace Ostrel
