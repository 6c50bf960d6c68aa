#include "OstrelEngine/Measures/Full/LuaLibraries.h"
#include "OstrelEngine/Measures/Full/LuaPattern.h"
#include "OstrelEngine/Measures/Full/LuaState.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace Ostrel {

namespace {

/// Bytes of a text that one call makes.
constexpr std::size_t MaxResult = 16U << 20;

class LuaWatch final : public PatternWatch {
public:
    explicit LuaWatch(lua_State* lua)
        : lua_(lua) { }

    void spend(long long steps) override { LuaState::of(lua_).check(lua_, steps); }
    [[noreturn]] void fail(const char* message) override {
        luaL_error(lua_, "%s", message);
        std::abort();
    }

private:
    lua_State* lua_;
};

std::string_view textArgument(lua_State* lua, int index) {
    std::size_t size = 0;
    const char* text = luaL_checklstring(lua, index, &size);
    return {text, size};
}

void push(lua_State* lua, std::string_view text) {
    lua_pushlstring(lua, text.data(), text.size());
}

void pushCapture(
    lua_State* lua, const LuaPattern& pattern, std::size_t index, std::string_view subject, std::string_view whole) {
    if (index >= pattern.captureCount()) {
        if (index > 0)
            luaL_error(lua, "invalid capture index");
        push(lua, whole);
        return;
    }
    const auto& capture = pattern.capture(index);
    if (capture.kind == LuaPattern::Capture::Kind::Position)
        lua_pushnumber(lua, static_cast<double>(capture.begin + 1));
    else
        push(lua, subject.substr(capture.begin, capture.length));
}

/// All captures, or the whole match where there are none.
int pushCaptures(lua_State* lua, const LuaPattern& pattern, std::string_view subject, std::string_view whole) {
    const auto count = std::max<std::size_t>(pattern.captureCount(), 1);
    luaL_checkstack(lua, static_cast<int>(count), "too many captures");
    for (std::size_t i = 0; i < count; ++i)
        pushCapture(lua, pattern, i, subject, whole);
    return static_cast<int>(count);
}

/// Where a search begins; the argument counts from 1, or from the end when negative.
std::size_t startArgument(lua_State* lua, int index, std::size_t size) {
    double start = luaL_optnumber(lua, index, 1);
    const auto length = static_cast<double>(size);
    if (start < 0)
        start += length + 1;
    return static_cast<std::size_t>(std::clamp(start - 1, 0.0, length));
}

std::size_t plainFind(std::string_view subject, std::string_view text, std::size_t from) {
    if (text.empty())
        return from;
    // The library's search is linear whatever the texts are.
    const void* found = memmem(subject.data() + from, subject.size() - from, text.data(), text.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - subject.data()) : std::string_view::npos;
}

bool takeAnchor(std::string_view& pattern) {
    const bool isAnchored = pattern.starts_with('^');
    if (isAnchored)
        pattern.remove_prefix(1);
    return isAnchored;
}

int pushRange(lua_State* lua, std::size_t begin, std::size_t end) {
    lua_pushnumber(lua, static_cast<double>(begin + 1));
    lua_pushnumber(lua, static_cast<double>(end));
    return 2;
}

int search(lua_State* lua, bool isFind) {
    const auto subject = textArgument(lua, 1);
    auto text = textArgument(lua, 2);
    const auto start = startArgument(lua, 3, subject.size());
    if (isFind && (lua_toboolean(lua, 4) || text.find_first_of("^$*+?.([%-") == std::string_view::npos)) {
        const auto found = plainFind(subject, text, start);
        if (found != std::string_view::npos)
            return pushRange(lua, found, found + text.size());
        lua_pushnil(lua);
        return 1;
    }
    const bool isAnchored = takeAnchor(text);
    LuaWatch watch(lua);
    LuaPattern pattern(subject, text, watch);
    for (auto begin = start; begin <= subject.size(); ++begin) {
        if (const auto end = pattern.match(begin)) {
            const auto whole = subject.substr(begin, *end - begin);
            if (!isFind)
                return pushCaptures(lua, pattern, subject, whole);
            const int range = pushRange(lua, begin, *end);
            return pattern.captureCount() == 0 ? range : range + pushCaptures(lua, pattern, subject, whole);
        }
        if (isAnchored)
            break;
    }
    lua_pushnil(lua);
    return 1;
}

int find(lua_State* lua) {
    return search(lua, true);
}

int match(lua_State* lua) {
    return search(lua, false);
}

/// Upvalues: subject, pattern, where to go on.
int nextMatch(lua_State* lua) {
    const auto subject = textArgument(lua, lua_upvalueindex(1));
    LuaWatch watch(lua);
    LuaPattern pattern(subject, textArgument(lua, lua_upvalueindex(2)), watch);
    for (auto begin = static_cast<std::size_t>(lua_tonumber(lua, lua_upvalueindex(3))); begin <= subject.size();
         ++begin) {
        const auto end = pattern.match(begin);
        if (!end)
            continue;
        lua_pushnumber(lua, static_cast<double>(*end == begin ? *end + 1 : *end));
        lua_replace(lua, lua_upvalueindex(3));
        return pushCaptures(lua, pattern, subject, subject.substr(begin, *end - begin));
    }
    return 0;
}

int allMatches(lua_State* lua) {
    textArgument(lua, 1);
    textArgument(lua, 2);
    lua_settop(lua, 2);
    lua_pushnumber(lua, 0);
    lua_pushcclosure(lua, nextMatch, 3);
    return 1;
}

void append(lua_State* lua, std::string& result, std::string_view text) {
    if (result.size() + text.size() > MaxResult)
        luaL_error(lua, "the resulting text is too long");
    result += text;
}

/// "%0" to "%9" in a replacement are the match and its captures.
void appendTemplate(
    lua_State* lua, std::string& result, const LuaPattern& pattern, std::string_view subject, std::string_view whole) {
    const auto replacement = textArgument(lua, 3);
    for (std::size_t i = 0; i < replacement.size(); ++i) {
        if (replacement[i] != '%' || i + 1 == replacement.size()) {
            append(lua, result, replacement.substr(i, 1));
            continue;
        }
        const char c = replacement[++i];
        if (c < '0' || c > '9') {
            append(lua, result, replacement.substr(i, 1));
        } else if (c == '0') {
            append(lua, result, whole);
        } else {
            pushCapture(lua, pattern, static_cast<std::size_t>(c - '1'), subject, whole);
            append(lua, result, textArgument(lua, -1));
            lua_pop(lua, 1);
        }
    }
}

void appendReplacement(
    lua_State* lua, std::string& result, const LuaPattern& pattern, std::string_view subject, std::string_view whole) {
    switch (lua_type(lua, 3)) {
    case LUA_TFUNCTION: {
        LuaState::of(lua).check(lua, 1);
        lua_pushvalue(lua, 3);
        const int count = pushCaptures(lua, pattern, subject, whole);
        lua_call(lua, count, 1);
        break;
    }
    case LUA_TTABLE:
        pushCapture(lua, pattern, 0, subject, whole);
        lua_gettable(lua, 3);
        break;
    default:
        appendTemplate(lua, result, pattern, subject, whole);
        return;
    }
    if (!lua_toboolean(lua, -1))
        append(lua, result, whole);
    else if (lua_isstring(lua, -1))
        append(lua, result, textArgument(lua, -1));
    else
        luaL_error(lua, "invalid replacement value (a %s)", luaL_typename(lua, -1));
    lua_pop(lua, 1);
}

int substitute(lua_State* lua) {
    const auto subject = textArgument(lua, 1);
    auto text = textArgument(lua, 2);
    const int type = lua_type(lua, 3);
    if (type != LUA_TNUMBER && type != LUA_TSTRING && type != LUA_TFUNCTION && type != LUA_TTABLE)
        return luaL_argerror(lua, 3, "text, function or table expected");
    const double limit = luaL_optnumber(lua, 4, static_cast<double>(subject.size() + 1));
    const bool isAnchored = takeAnchor(text);
    LuaWatch watch(lua);
    LuaPattern pattern(subject, text, watch);
    std::string result;
    std::size_t begin = 0;
    double count = 0;
    while (count < limit) {
        const auto end = pattern.match(begin);
        if (end) {
            ++count;
            appendReplacement(lua, result, pattern, subject, subject.substr(begin, *end - begin));
        }
        if (end && *end > begin)
            begin = *end;
        else if (begin < subject.size())
            append(lua, result, subject.substr(begin++, 1));
        else
            break;
        if (isAnchored)
            break;
    }
    append(lua, result, subject.substr(std::min(begin, subject.size())));
    push(lua, result);
    lua_pushnumber(lua, count);
    return 2;
}

int repeat(lua_State* lua) {
    const auto text = textArgument(lua, 1);
    const double count = luaL_checknumber(lua, 2);
    if (!(count >= 1) || text.empty()) {
        lua_pushliteral(lua, "");
        return 1;
    }
    if (count * static_cast<double>(text.size()) > static_cast<double>(MaxResult))
        return luaL_error(lua, "the resulting text is too long");
    std::string result;
    result.reserve(text.size() * static_cast<std::size_t>(count));
    for (auto left = static_cast<std::size_t>(count); left > 0; --left)
        result += text;
    push(lua, result);
    return 1;
}

} // namespace

void replaceStringFunctions(lua_State* lua) {
    static constexpr luaL_Reg Functions[] = {{"find", find}, {"match", match}, {"gmatch", allMatches},
        {"gfind", allMatches}, {"gsub", substitute}, {"rep", repeat}};
    for (const auto& [name, function] : Functions) {
        lua_pushcfunction(lua, function);
        lua_setfield(lua, -2, name);
    }
}

} // namespace Ostrel
