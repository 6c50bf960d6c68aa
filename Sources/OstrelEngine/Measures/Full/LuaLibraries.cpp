#include "OstrelEngine/Measures/Full/LuaLibraries.h"

#include "OstrelEngine/Measures/Full/LuaState.h"

#include <chrono>
#include <string>
#include <string_view>

namespace Ostrel {

namespace {

constexpr std::size_t MaxSource = 4U << 20;

std::string_view textArgument(lua_State* lua, int index) {
    std::size_t size = 0;
    const char* text = luaL_checklstring(lua, index, &size);
    return {text, size};
}

/// As `print` shows a value.
std::string shown(lua_State* lua, int index) {
    lua_getglobal(lua, "tostring");
    lua_pushvalue(lua, index);
    lua_call(lua, 1, 1);
    std::size_t size = 0;
    const char* text = lua_tolstring(lua, -1, &size);
    std::string result = text ? std::string(text, size) : std::string();
    lua_pop(lua, 1);
    return result;
}

int print(lua_State* lua) {
    std::string line;
    const int count = lua_gettop(lua);
    for (int i = 1; i <= count; ++i) {
        if (i > 1)
            line += '\t';
        line += shown(lua, i);
    }
    LuaState::of(lua).environment().print(line);
    return 0;
}

int loadChecked(lua_State* lua) {
    const auto code = textArgument(lua, 1);
    const std::string name = lua_isnoneornil(lua, 2) ? std::string("=text") : std::string(textArgument(lua, 2));
    if (code.size() > MaxSource)
        luaL_error(lua, "the text is too long");
    LuaState::load(lua, code, name);
    return 1;
}

/// Calls the function with all arguments; its error becomes nil and the message.
int nilOnError(lua_State* lua, lua_CFunction function) {
    lua_pushcfunction(lua, function);
    lua_insert(lua, 1);
    if (lua_pcall(lua, lua_gettop(lua) - 1, 1, 0) == 0)
        return 1;
    lua_pushnil(lua);
    lua_insert(lua, -2);
    return 2;
}

int loadString(lua_State* lua) {
    return nilOnError(lua, loadChecked);
}

/// `load`: the text comes in pieces from a function.
int load(lua_State* lua) {
    luaL_checktype(lua, 1, LUA_TFUNCTION);
    std::string code;
    for (;;) {
        lua_pushvalue(lua, 1);
        lua_call(lua, 0, 1);
        if (lua_isnil(lua, -1))
            break;
        const auto piece = textArgument(lua, -1);
        if (piece.empty())
            break;
        code += piece;
        if (code.size() > MaxSource)
            return luaL_error(lua, "the text is too long");
        lua_pop(lua, 1);
    }
    const std::string name = lua_isnoneornil(lua, 2) ? std::string("=load") : std::string(textArgument(lua, 2));
    lua_settop(lua, 0);
    lua_pushlstring(lua, code.data(), code.size());
    lua_pushlstring(lua, name.data(), name.size());
    return nilOnError(lua, loadChecked);
}

/// Leaves the chunk of a file or errors.
int loadFileChecked(lua_State* lua) {
    const auto path = textArgument(lua, 1);
    std::string error;
    const auto code = LuaState::of(lua).environment().readScript(path, error);
    if (!code)
        luaL_error(lua, "%s", error.c_str());
    const auto name = path.substr(path.find_last_of("\\/") + 1);
    LuaState::load(lua, *code, "@" + std::string(name));
    return 1;
}

int loadFile(lua_State* lua) {
    return nilOnError(lua, loadFileChecked);
}

int doFile(lua_State* lua) {
    lua_settop(lua, 1);
    loadFileChecked(lua);
    lua_call(lua, 0, LUA_MULTRET);
    return lua_gettop(lua) - 1;
}

/// A table whose metatable is locked stays as it is.
int rawSet(lua_State* lua) {
    luaL_checktype(lua, 1, LUA_TTABLE);
    luaL_checkany(lua, 3);
    if (luaL_getmetafield(lua, 1, "__metatable"))
        luaL_error(lua, "the table is read-only");
    lua_settop(lua, 3);
    if (lua_isnil(lua, 2))
        luaL_error(lua, "the index is nil");
    lua_rawset(lua, 1);
    return 1;
}

/// The handler runs when the error has been caught. The library's own runs it where the error arises: within the hook
/// that ends a call, where no hook would end the handler.
int protectedCall(lua_State* lua) {
    lua_settop(lua, 2);
    lua_insert(lua, 1);
    const bool isDone = lua_pcall(lua, 0, LUA_MULTRET, 0) == 0;
    lua_pushboolean(lua, isDone);
    if (isDone) {
        lua_replace(lua, 1);
        return lua_gettop(lua);
    }
    lua_insert(lua, 1);
    lua_call(lua, 1, 1);
    return 2;
}

/// Upvalue: the library's own `resume`, which nests without counting.
int resume(lua_State* lua) {
    LuaState::of(lua).check(lua, 1);
    lua_pushvalue(lua, lua_upvalueindex(1));
    lua_insert(lua, 1);
    lua_call(lua, lua_gettop(lua) - 1, LUA_MULTRET);
    return lua_gettop(lua);
}

/// Upvalue: a function made by the library's own `wrap`.
int resumeWrapped(lua_State* lua) {
    return resume(lua);
}

int wrap(lua_State* lua) {
    lua_pushvalue(lua, lua_upvalueindex(1));
    lua_insert(lua, 1);
    lua_call(lua, lua_gettop(lua) - 1, 1);
    lua_pushcclosure(lua, resumeWrapped, 1);
    return 1;
}

/// Upvalue: the library's own `insert` or `remove`, which move the elements behind the place within one instruction.
int moveElements(lua_State* lua) {
    constexpr long long ElementsPerInstruction = 8;
    luaL_checktype(lua, 1, LUA_TTABLE);
    // `insert` would walk from the end to a place far below the first.
    if (lua_gettop(lua) == 3 && luaL_checknumber(lua, 2) < 1)
        luaL_argerror(lua, 2, "position out of bounds");
    if (lua_gettop(lua) > 1)
        LuaState::of(lua).check(lua, static_cast<long long>(lua_objlen(lua, 1)) / ElementsPerInstruction);
    lua_pushvalue(lua, lua_upvalueindex(1));
    lua_insert(lua, 1);
    lua_call(lua, lua_gettop(lua) - 1, LUA_MULTRET);
    return lua_gettop(lua);
}

/// Scripts measure their animations with it: time that passes, not time that is computed.
int elapsedSeconds(lua_State* lua) {
    static const auto start = std::chrono::steady_clock::now();
    lua_pushnumber(lua, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    return 1;
}

int removeFile(lua_State* lua) {
    std::string error;
    if (LuaState::of(lua).environment().removeFile(textArgument(lua, 1), error)) {
        lua_pushboolean(lua, 1);
        return 1;
    }
    lua_pushnil(lua);
    lua_pushlstring(lua, error.data(), error.size());
    return 2;
}

int renameFile(lua_State* lua) {
    std::string error;
    if (LuaState::of(lua).environment().renameFile(textArgument(lua, 1), textArgument(lua, 2), error)) {
        lua_pushboolean(lua, 1);
        return 1;
    }
    lua_pushnil(lua);
    lua_pushlstring(lua, error.data(), error.size());
    return 2;
}

int refuseProgram(lua_State* lua) {
    lua_pushnil(lua);
    lua_pushliteral(lua, "scripts start no programs");
    return 2;
}

int failingStatus(lua_State* lua) {
    lua_pushinteger(lua, 1);
    return 1;
}

int nothing(lua_State* lua) {
    lua_pushnil(lua);
    return 1;
}

/// Upvalue: the library. New names may be added, which some scripts do; what it has stays.
int addToLibrary(lua_State* lua) {
    lua_settop(lua, 3);
    lua_pushvalue(lua, 2);
    lua_rawget(lua, lua_upvalueindex(1));
    if (!lua_isnil(lua, -1))
        luaL_error(lua, "the library is read-only");
    lua_pop(lua, 1);
    lua_rawset(lua, lua_upvalueindex(1));
    return 0;
}

/// Puts a read-only stand-in of the table on top into the global `name`.
void setLibrary(lua_State* lua, const char* name) {
    lua_newtable(lua);
    lua_createtable(lua, 0, 3);
    lua_pushvalue(lua, -3);
    lua_setfield(lua, -2, "__index");
    lua_pushvalue(lua, -3);
    lua_pushcclosure(lua, addToLibrary, 1);
    lua_setfield(lua, -2, "__newindex");
    lua_pushboolean(lua, 0);
    lua_setfield(lua, -2, "__metatable");
    lua_setmetatable(lua, -2);
    lua_setglobal(lua, name);
    lua_pop(lua, 1);
}

void open(lua_State* lua, lua_CFunction library, const char* name) {
    lua_pushcfunction(lua, library);
    lua_pushstring(lua, name);
    lua_call(lua, 1, 0);
}

void setFunctions(lua_State* lua, const luaL_Reg* functions) {
    for (; functions->name; ++functions) {
        lua_pushcfunction(lua, functions->func);
        lua_setfield(lua, -2, functions->name);
    }
}

/// The function of the table on top becomes `replacement` with the old one as upvalue.
void wrapFunction(lua_State* lua, const char* name, lua_CFunction replacement) {
    lua_getfield(lua, -1, name);
    lua_pushcclosure(lua, replacement, 1);
    lua_setfield(lua, -2, name);
}

void openBase(lua_State* lua) {
    open(lua, luaopen_base, "");
    lua_pushvalue(lua, LUA_GLOBALSINDEX);
    for (const char* name : {"collectgarbage", "gcinfo", "newproxy", "getfenv", "setfenv"}) {
        lua_pushnil(lua);
        lua_setfield(lua, -2, name);
    }
    static constexpr luaL_Reg Replaced[] = {{"print", print}, {"load", load}, {"loadstring", loadString},
        {"loadfile", loadFile}, {"dofile", doFile}, {"rawset", rawSet}, {"xpcall", protectedCall}, {nullptr, nullptr}};
    setFunctions(lua, Replaced);
    lua_pop(lua, 1);

    lua_getglobal(lua, LUA_COLIBNAME);
    wrapFunction(lua, "resume", resume);
    wrapFunction(lua, "wrap", wrap);
    setLibrary(lua, LUA_COLIBNAME);
}

void openOS(lua_State* lua) {
    open(lua, luaopen_os, LUA_OSLIBNAME);
    lua_getglobal(lua, LUA_OSLIBNAME);
    lua_newtable(lua);
    for (const char* name : {"date", "difftime", "time"}) {
        lua_getfield(lua, -2, name);
        lua_setfield(lua, -2, name);
    }
    static constexpr luaL_Reg Own[] = {{"clock", elapsedSeconds}, {"remove", removeFile}, {"rename", renameFile},
        {"execute", failingStatus}, {"setlocale", nothing}, {nullptr, nullptr}};
    setFunctions(lua, Own);
    setLibrary(lua, LUA_OSLIBNAME);
    lua_pop(lua, 1);
}

} // namespace

void pushObjectMetatable(lua_State* lua, const luaL_Reg* methods) {
    lua_newtable(lua);
    lua_newtable(lua);
    setFunctions(lua, methods);
    lua_setfield(lua, -2, "__index");
    lua_pushboolean(lua, 0);
    lua_setfield(lua, -2, "__metatable");
}

void openLuaLibraries(lua_State* lua) {
    openBase(lua);
    openOS(lua);
    open(lua, luaopen_math, LUA_MATHLIBNAME);
    lua_getglobal(lua, LUA_MATHLIBNAME);
    setLibrary(lua, LUA_MATHLIBNAME);

    open(lua, luaopen_table, LUA_TABLIBNAME);
    lua_getglobal(lua, LUA_TABLIBNAME);
    wrapFunction(lua, "insert", moveElements);
    wrapFunction(lua, "remove", moveElements);
    setLibrary(lua, LUA_TABLIBNAME);

    open(lua, luaopen_string, LUA_STRLIBNAME);
    lua_getglobal(lua, LUA_STRLIBNAME);
    lua_pushnil(lua);
    lua_setfield(lua, -2, "dump");
    replaceStringFunctions(lua);
    setLibrary(lua, LUA_STRLIBNAME);
    // The metatable that all texts share.
    lua_pushliteral(lua, "");
    lua_getmetatable(lua, -1);
    lua_pushboolean(lua, 0);
    lua_setfield(lua, -2, "__metatable");
    lua_pop(lua, 2);

    pushFileLibrary(lua);
    lua_pushcfunction(lua, refuseProgram);
    lua_setfield(lua, -2, "popen");
    setLibrary(lua, LUA_IOLIBNAME);

    // The library table of loaded modules is a way around the stand-ins.
    lua_pushnil(lua);
    lua_setfield(lua, LUA_REGISTRYINDEX, "_LOADED");
    setSkinObjects(lua);
}

} // namespace Ostrel
