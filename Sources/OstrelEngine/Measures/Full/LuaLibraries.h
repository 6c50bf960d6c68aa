#pragma once

#include <lua.hpp>

// What a script finds in its globals. All of these run in protected mode and may error.
namespace Ostrel {

/// The libraries of the language without what reaches outside, and the skin's objects.
void openLuaLibraries(lua_State* lua);
/// Gives the keys of the global PROPERTIES the measure's options.
void fillLuaProperties(lua_State* lua);

/// Replace functions of the table on the stack's top, which is the library `string`, by ones that are bounded.
void replaceStringFunctions(lua_State* lua);
/// Leaves the table of the library `io`, whose files go through the script's environment.
void pushFileLibrary(lua_State* lua);
/// Sets the globals SKIN and SELF.
void setSkinObjects(lua_State* lua);

/// Makes a metatable of `methods` as its index, which scripts can neither see nor change, and leaves it.
void pushObjectMetatable(lua_State* lua, const luaL_Reg* methods);

} // namespace Ostrel
