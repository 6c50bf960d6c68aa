#include "OstrelEngine/Measures/Full/LuaLibraries.h"
#include "OstrelEngine/Measures/Full/LuaState.h"
#include "OstrelEngine/Measures/Full/ScriptHost.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The objects through which a script reaches its skin: SKIN, SELF and the handles of measures and meters.
namespace Ostrel {

namespace {

/// Keys of the metatables in the registry: their addresses.
char measureKind;
char meterKind;
char skinKind;

using Side = ScriptHost::Side;

ScriptEnvironment& environment(lua_State* lua) {
    return LuaState::of(lua).environment();
}

ScriptHost& skin(lua_State* lua) {
    return environment(lua).skin();
}

std::string_view text(lua_State* lua, int index) {
    std::size_t size = 0;
    const char* bytes = luaL_checklstring(lua, index, &size);
    return {bytes, size};
}

int push(lua_State* lua, std::string_view result) {
    lua_pushlstring(lua, result.data(), result.size());
    return 1;
}

int push(lua_State* lua, double result) {
    lua_pushnumber(lua, result);
    return 1;
}

/// The object when the argument is one of this kind, else null.
void* object(lua_State* lua, int index, char* kind) {
    void* block = lua_touserdata(lua, index);
    if (!block || !lua_getmetatable(lua, index))
        return nullptr;
    lua_pushlightuserdata(lua, kind);
    lua_rawget(lua, LUA_REGISTRYINDEX);
    const bool isKind = lua_rawequal(lua, -1, -2);
    lua_pop(lua, 2);
    return isKind ? block : nullptr;
}

/// SKIN as the first argument, which "." in place of ":" forgets.
void checkSkin(lua_State* lua) {
    if (!object(lua, 1, &skinKind))
        luaL_argerror(lua, 1, "SKIN expected; its functions are called with ':'");
}

const BaseMeasure& measure(lua_State* lua) {
    const auto* handle = static_cast<const BaseMeasure* const*>(object(lua, 1, &measureKind));
    if (!handle)
        luaL_argerror(lua, 1, "measure expected; its functions are called with ':'");
    return **handle;
}

std::size_t meter(lua_State* lua) {
    const auto* handle = static_cast<const std::size_t*>(object(lua, 1, &meterKind));
    if (!handle)
        luaL_argerror(lua, 1, "meter expected; its functions are called with ':'");
    return *handle;
}

template <typename Handle> int pushHandle(lua_State* lua, Handle handle, char* kind) {
    *static_cast<Handle*>(lua_newuserdata(lua, sizeof(Handle))) = handle;
    lua_pushlightuserdata(lua, kind);
    lua_rawget(lua, LUA_REGISTRYINDEX);
    lua_setmetatable(lua, -2);
    return 1;
}

/// The fallback argument of a getter, else what `none` is.
int pushFallback(lua_State* lua, int index, std::string_view none) {
    if (lua_isnoneornil(lua, index))
        return push(lua, none);
    lua_pushvalue(lua, index);
    return 1;
}

bool withSections(lua_State* lua) {
    return lua_isnoneornil(lua, 4) || lua_toboolean(lua, 4);
}

int pushOption(lua_State* lua, const std::optional<std::string>& option) {
    return option ? push(lua, *option) : pushFallback(lua, 3, "");
}

std::string argumentText(lua_State* lua, int index) {
    switch (lua_type(lua, index)) {
    case LUA_TSTRING:
    case LUA_TNUMBER:
        return std::string(text(lua, index));
    case LUA_TBOOLEAN:
        return lua_toboolean(lua, index) ? "true" : "false";
    default:
        return {};
    }
}

// SKIN

int bang(lua_State* lua) {
    checkSkin(lua);
    const auto name = text(lua, 2);
    auto& script = environment(lua);
    const int count = lua_gettop(lua);
    if (count == 2) {
        script.skin().action(script.self(), name);
        return 0;
    }
    std::vector<std::string> arguments;
    arguments.reserve(static_cast<std::size_t>(count - 2));
    for (int i = 3; i <= count; ++i)
        arguments.push_back(argumentText(lua, i));
    script.skin().bang(script.self(), name, arguments);
    return 0;
}

int getVariable(lua_State* lua) {
    checkSkin(lua);
    if (const auto value = skin(lua).variable(text(lua, 2)))
        return push(lua, *value);
    lua_settop(lua, 3);
    return 1;
}

int getMeasure(lua_State* lua) {
    checkSkin(lua);
    if (const auto* found = environment(lua).measure(text(lua, 2)))
        return pushHandle(lua, found, &measureKind);
    lua_pushnil(lua);
    return 1;
}

int getMeter(lua_State* lua) {
    checkSkin(lua);
    if (const auto found = skin(lua).meter(text(lua, 2)))
        return pushHandle(lua, *found, &meterKind);
    lua_pushnil(lua);
    return 1;
}

int makePathAbsolute(lua_State* lua) {
    checkSkin(lua);
    return push(lua, environment(lua).absolutePath(text(lua, 2)));
}

int parseFormula(lua_State* lua) {
    checkSkin(lua);
    if (const auto number = skin(lua).formula(text(lua, 2)))
        return push(lua, *number);
    lua_pushnil(lua);
    return 1;
}

int replaceVariables(lua_State* lua) {
    checkSkin(lua);
    return push(lua, environment(lua).replaceVariables(text(lua, 2)));
}

double side(const Rect& frame, Side which) {
    switch (which) {
    case Side::X:
        return frame.x;
    case Side::Y:
        return frame.y;
    case Side::Width:
        return frame.width;
    default:
        return frame.height;
    }
}

template <Side Which> int windowSide(lua_State* lua) {
    checkSkin(lua);
    return push(lua, side(skin(lua).windowFrame(), Which));
}

int moveWindow(lua_State* lua) {
    checkSkin(lua);
    skin(lua).moveWindow(luaL_checknumber(lua, 2), luaL_checknumber(lua, 3));
    return 0;
}

int fadeWindow(lua_State* lua) {
    checkSkin(lua);
    skin(lua).fadeWindow(luaL_checknumber(lua, 2), luaL_checknumber(lua, 3));
    return 0;
}

// Measures

int measureName(lua_State* lua) {
    return push(lua, measure(lua).name());
}

int measureOption(lua_State* lua) {
    return pushOption(lua, skin(lua).option(measure(lua), text(lua, 2), withSections(lua)));
}

int measureNumberOption(lua_State* lua) {
    auto& host = skin(lua);
    const auto option = host.option(measure(lua), text(lua, 2), true);
    if (const auto number = option ? host.formula(*option) : std::nullopt)
        return push(lua, *number);
    return push(lua, luaL_optnumber(lua, 3, 0));
}

int value(lua_State* lua) {
    return push(lua, measure(lua).value().numericValue);
}

int stringValue(lua_State* lua) {
    return push(lua, environment(lua).stringValue(measure(lua)));
}

int minValue(lua_State* lua) {
    return push(lua, measure(lua).value().minValue);
}

int maxValue(lua_State* lua) {
    return push(lua, measure(lua).value().maxValue);
}

int valueRange(lua_State* lua) {
    const auto& held = measure(lua).value();
    return push(lua, held.maxValue - held.minValue);
}

int relativeValue(lua_State* lua) {
    const auto& held = measure(lua).value();
    const double range = held.maxValue - held.minValue;
    return push(lua, range > 0 ? std::clamp((held.numericValue - held.minValue) / range, 0.0, 1.0) : 0.0);
}

int bangOnMeasure(lua_State* lua, std::string_view name) {
    auto& script = environment(lua);
    script.skin().bang(script.self(), name, {measure(lua).name()});
    return 0;
}

int disable(lua_State* lua) {
    return bangOnMeasure(lua, "DisableMeasure");
}

int enable(lua_State* lua) {
    return bangOnMeasure(lua, "EnableMeasure");
}

// Meters

int meterName(lua_State* lua) {
    return push(lua, skin(lua).meterName(meter(lua)));
}

int meterOption(lua_State* lua) {
    return pushOption(lua, skin(lua).option(meter(lua), text(lua, 2), withSections(lua)));
}

template <Side Which> int meterSide(lua_State* lua) {
    const auto place = meter(lua);
    const bool isReal = lua_toboolean(lua, 2) != 0;
    return push(lua, side(isReal ? skin(lua).meterFrame(place) : skin(lua).meterOptionFrame(place), Which));
}

template <Side Which> int setMeterSide(lua_State* lua) {
    skin(lua).setMeterSide(meter(lua), Which, luaL_checknumber(lua, 2));
    return 0;
}

int bangOnMeter(lua_State* lua, std::string_view name) {
    auto& script = environment(lua);
    script.skin().bang(script.self(), name, {script.skin().meterName(meter(lua))});
    return 0;
}

int show(lua_State* lua) {
    return bangOnMeter(lua, "ShowMeter");
}

int hide(lua_State* lua) {
    return bangOnMeter(lua, "HideMeter");
}

constexpr luaL_Reg SkinMethods[]
    = {{"Bang", bang}, {"GetVariable", getVariable}, {"GetMeasure", getMeasure}, {"GetMeter", getMeter},
        {"MakePathAbsolute", makePathAbsolute}, {"ParseFormula", parseFormula}, {"ReplaceVariables", replaceVariables},
        {"GetX", windowSide<Side::X>}, {"GetY", windowSide<Side::Y>}, {"GetW", windowSide<Side::Width>},
        {"GetH", windowSide<Side::Height>}, {"MoveWindow", moveWindow}, {"FadeWindow", fadeWindow}, {nullptr, nullptr}};

constexpr luaL_Reg MeasureMethods[] = {{"GetName", measureName}, {"GetOption", measureOption},
    {"GetNumberOption", measureNumberOption}, {"GetValue", value}, {"GetStringValue", stringValue},
    {"GetMinValue", minValue}, {"GetMaxValue", maxValue}, {"GetValueRange", valueRange},
    {"GetRelativeValue", relativeValue}, {"Disable", disable}, {"Enable", enable}, {nullptr, nullptr}};

constexpr luaL_Reg MeterMethods[] = {{"GetName", meterName}, {"GetOption", meterOption}, {"GetX", meterSide<Side::X>},
    {"GetY", meterSide<Side::Y>}, {"GetW", meterSide<Side::Width>}, {"GetH", meterSide<Side::Height>},
    {"SetX", setMeterSide<Side::X>}, {"SetY", setMeterSide<Side::Y>}, {"SetW", setMeterSide<Side::Width>},
    {"SetH", setMeterSide<Side::Height>}, {"Show", show}, {"Hide", hide}, {nullptr, nullptr}};

void defineKind(lua_State* lua, char* kind, const luaL_Reg* methods) {
    lua_pushlightuserdata(lua, kind);
    pushObjectMetatable(lua, methods);
    lua_rawset(lua, LUA_REGISTRYINDEX);
}

} // namespace

void setSkinObjects(lua_State* lua) {
    defineKind(lua, &skinKind, SkinMethods);
    defineKind(lua, &measureKind, MeasureMethods);
    defineKind(lua, &meterKind, MeterMethods);
    pushHandle(lua, '\0', &skinKind);
    lua_setglobal(lua, "SKIN");
    pushHandle(lua, &environment(lua).self(), &measureKind);
    lua_setglobal(lua, "SELF");
}

void fillLuaProperties(lua_State* lua) {
    lua_getglobal(lua, "PROPERTIES");
    if (!lua_istable(lua, -1))
        return;
    auto& script = environment(lua);
    lua_pushnil(lua);
    while (lua_next(lua, -2) != 0) {
        lua_pop(lua, 1);
        if (lua_type(lua, -1) != LUA_TSTRING)
            continue;
        // A key that is there already: assigning to it does not disturb the walk.
        if (const auto option = script.skin().option(script.self(), text(lua, -1), true)) {
            lua_pushvalue(lua, -1);
            push(lua, *option);
            lua_rawset(lua, -4);
        }
    }
}

} // namespace Ostrel
