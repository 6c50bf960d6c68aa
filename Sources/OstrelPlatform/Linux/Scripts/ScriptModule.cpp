#include "OstrelEngine/Measures/Full/LuaEngine.h"

/// The one symbol of the module that holds the interpreter; the caller owns the result.
extern "C" __attribute__((visibility("default"))) Ostrel::ScriptEngine* ostrelMakeScriptEngine() {
    return new Ostrel::LuaEngine();
}
