#include "OstrelEngine/Measures/Full/LuaLibraries.h"
#include "OstrelEngine/Measures/Full/LuaState.h"

#include <algorithm>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

// The library `io` over whole files: what is read is in memory when it is opened, what is written reaches the disk when
// the file is flushed or closed.
namespace Ostrel {

namespace {

constexpr std::size_t MaxFileSize = 8U << 20;
constexpr int MaxOpenFiles = 16;

/// Keys in the registry: their addresses.
char fileKind;
char defaultInput;
char defaultOutput;

/// One open file. Text files lose CR before LF when they are read, and get it back when they had it.
struct LuaFile {
    std::string path;
    std::string content;
    std::size_t place = 0;
    bool reads = false;
    bool writes = false;
    bool appends = false;
    bool isText = true;
    bool hasReturns = false;
    bool isDirty = false;
    bool isOpen = true;
};

std::string_view text(lua_State* lua, int index) {
    std::size_t size = 0;
    const char* bytes = luaL_checklstring(lua, index, &size);
    return {bytes, size};
}

void push(lua_State* lua, std::string_view bytes) {
    lua_pushlstring(lua, bytes.data(), bytes.size());
}

int failure(lua_State* lua, std::string_view message) {
    lua_pushnil(lua);
    push(lua, message);
    lua_pushinteger(lua, 2);
    return 3;
}

LuaFile* fileAt(lua_State* lua, int index) {
    void* block = lua_touserdata(lua, index);
    if (!block || !lua_getmetatable(lua, index))
        return nullptr;
    lua_pushlightuserdata(lua, &fileKind);
    lua_rawget(lua, LUA_REGISTRYINDEX);
    const bool isFile = lua_rawequal(lua, -1, -2);
    lua_pop(lua, 2);
    return isFile ? static_cast<LuaFile*>(block) : nullptr;
}

LuaFile& openFileAt(lua_State* lua, int index) {
    auto* file = fileAt(lua, index);
    if (!file)
        luaL_argerror(lua, index, "file expected");
    if (!file->isOpen)
        luaL_error(lua, "the file is closed");
    return *file;
}

std::string withReturns(std::string_view content) {
    std::string bytes;
    bytes.reserve(content.size() + content.size() / 16);
    for (const char c : content) {
        if (c == '\n')
            bytes += '\r';
        bytes += c;
    }
    return bytes;
}

std::string withoutReturns(std::string_view bytes) {
    std::string content;
    content.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != '\r' || i + 1 == bytes.size() || bytes[i + 1] != '\n')
            content += bytes[i];
    }
    return content;
}

bool flush(lua_State* lua, LuaFile& file, std::string& error) {
    if (!std::exchange(file.isDirty, false))
        return true;
    auto& environment = LuaState::of(lua).environment();
    if (file.isText && file.hasReturns)
        return environment.writeFile(file.path, withReturns(file.content), error);
    return environment.writeFile(file.path, file.content, error);
}

bool close(lua_State* lua, LuaFile& file, std::string& error) {
    const bool isWritten = flush(lua, file, error);
    file.isOpen = false;
    std::string().swap(file.content);
    --LuaState::of(lua).openFiles;
    return isWritten;
}

int pushOutcome(lua_State* lua, bool isDone, std::string_view error) {
    if (!isDone)
        return failure(lua, error);
    lua_pushboolean(lua, 1);
    return 1;
}

/// Leaves a file object; false with `error` when it cannot be opened.
bool open(lua_State* lua, std::string_view path, std::string_view mode, std::string& error) {
    auto& state = LuaState::of(lua);
    if (state.openFiles >= MaxOpenFiles) {
        error = "too many open files";
        return false;
    }
    const char kind = mode.empty() ? 'r' : mode.front();
    if (kind != 'r' && kind != 'w' && kind != 'a') {
        error = "unknown mode";
        return false;
    }
    LuaFile file;
    file.path = path;
    file.isText = mode.find('b') == std::string_view::npos;
    file.reads = kind == 'r' || mode.find('+') != std::string_view::npos;
    file.writes = kind != 'r' || mode.find('+') != std::string_view::npos;
    file.appends = kind == 'a';
    if (file.writes && !state.environment().isWritable(path, error))
        return false;
    std::string missing;
    auto former = state.environment().readFile(path, kind == 'r' ? error : missing);
    if (!former && kind == 'r')
        return false;
    file.hasReturns = file.isText && former && former->find("\r\n") != std::string::npos;
    if (kind == 'w')
        file.isDirty = true;
    else if (former)
        file.content = file.hasReturns ? withoutReturns(*former) : std::move(*former);
    new (lua_newuserdata(lua, sizeof(LuaFile))) LuaFile(std::move(file));
    lua_pushlightuserdata(lua, &fileKind);
    lua_rawget(lua, LUA_REGISTRYINDEX);
    lua_setmetatable(lua, -2);
    ++state.openFiles;
    return true;
}

int openFunction(lua_State* lua) {
    std::string error;
    const auto mode = lua_isnoneornil(lua, 2) ? std::string_view("r") : text(lua, 2);
    return open(lua, text(lua, 1), mode, error) ? 1 : failure(lua, std::string(text(lua, 1)) + ": " + error);
}

bool readLine(lua_State* lua, LuaFile& file) {
    if (file.place >= file.content.size())
        return false;
    const auto rest = std::string_view(file.content).substr(file.place);
    const auto end = std::min(rest.find('\n'), rest.size());
    push(lua, rest.substr(0, end));
    file.place += std::min(end + 1, rest.size());
    return true;
}

bool readNumber(lua_State* lua, LuaFile& file) {
    constexpr std::string_view Blanks = " \t\n\v\f\r";
    constexpr std::string_view Signs = "+-.0123456789abcdefABCDEFxX";
    const std::string_view content = file.content;
    const auto begin = std::min(content.find_first_not_of(Blanks, file.place), content.size());
    auto end = std::min(content.find_first_not_of(Signs, begin), content.size());
    constexpr std::size_t Longest = 64;
    end = std::min(end, begin + Longest);
    push(lua, content.substr(begin, end - begin));
    file.place = end;
    if (!lua_isnumber(lua, -1)) {
        lua_pop(lua, 1);
        return false;
    }
    const double number = lua_tonumber(lua, -1);
    lua_pop(lua, 1);
    lua_pushnumber(lua, number);
    return true;
}

bool readBytes(lua_State* lua, LuaFile& file, double count) {
    const auto rest = std::string_view(file.content).substr(std::min(file.place, file.content.size()));
    if (rest.empty())
        return false;
    const auto size = static_cast<std::size_t>(std::clamp(count, 0.0, static_cast<double>(rest.size())));
    push(lua, rest.substr(0, size));
    file.place += size;
    return true;
}

bool readFormat(lua_State* lua, LuaFile& file, int index) {
    if (lua_type(lua, index) == LUA_TNUMBER)
        return readBytes(lua, file, lua_tonumber(lua, index));
    auto format = text(lua, index);
    if (format.starts_with('*'))
        format.remove_prefix(1);
    if (format.starts_with('l'))
        return readLine(lua, file);
    if (format.starts_with('n'))
        return readNumber(lua, file);
    if (!format.starts_with('a'))
        luaL_argerror(lua, index, "unknown format");
    if (!readBytes(lua, file, static_cast<double>(file.content.size())))
        lua_pushliteral(lua, "");
    return true;
}

int read(lua_State* lua, LuaFile& file, int first) {
    if (!file.reads)
        return failure(lua, "the file is open for writing");
    const int last = lua_gettop(lua);
    if (last < first) {
        if (!readLine(lua, file))
            lua_pushnil(lua);
        return 1;
    }
    luaL_checkstack(lua, last - first + 1, "too many arguments");
    for (int i = first; i <= last; ++i) {
        if (!readFormat(lua, file, i)) {
            lua_pushnil(lua);
            return i - first + 1;
        }
    }
    return last - first + 1;
}

int write(lua_State* lua, LuaFile& file, int first) {
    if (!file.writes)
        return failure(lua, "the file is open for reading");
    for (int i = first; i <= lua_gettop(lua); ++i) {
        const auto piece = text(lua, i);
        if (file.appends)
            file.place = file.content.size();
        if (file.place + piece.size() > MaxFileSize)
            return failure(lua, "the file is too large");
        if (file.place > file.content.size())
            file.content.resize(file.place);
        file.content.replace(file.place, std::min(piece.size(), file.content.size() - file.place), piece);
        file.place += piece.size();
        file.isDirty = true;
    }
    lua_pushboolean(lua, 1);
    return 1;
}

int fileRead(lua_State* lua) {
    return read(lua, openFileAt(lua, 1), 2);
}

int fileWrite(lua_State* lua) {
    return write(lua, openFileAt(lua, 1), 2);
}

int fileFlush(lua_State* lua) {
    std::string error;
    const bool isDone = flush(lua, openFileAt(lua, 1), error);
    return pushOutcome(lua, isDone, error);
}

int fileClose(lua_State* lua) {
    std::string error;
    const bool isDone = close(lua, openFileAt(lua, 1), error);
    return pushOutcome(lua, isDone, error);
}

int fileSeek(lua_State* lua) {
    auto& file = openFileAt(lua, 1);
    const auto whence = lua_isnoneornil(lua, 2) ? std::string_view("cur") : text(lua, 2);
    double place = luaL_optnumber(lua, 3, 0);
    if (whence == "cur")
        place += static_cast<double>(file.place);
    else if (whence == "end")
        place += static_cast<double>(file.content.size());
    else if (whence != "set")
        return luaL_argerror(lua, 2, "unknown place");
    if (!(place >= 0 && place <= static_cast<double>(MaxFileSize)))
        return failure(lua, "there is no such place");
    file.place = static_cast<std::size_t>(place);
    lua_pushnumber(lua, place);
    return 1;
}

int fileBuffer(lua_State* lua) {
    openFileAt(lua, 1);
    lua_pushboolean(lua, 1);
    return 1;
}

/// Upvalues: the file, and whether its end closes it.
int nextLine(lua_State* lua) {
    auto& file = openFileAt(lua, lua_upvalueindex(1));
    if (readLine(lua, file))
        return 1;
    std::string error;
    if (lua_toboolean(lua, lua_upvalueindex(2)))
        close(lua, file, error);
    return 0;
}

int fileLines(lua_State* lua) {
    openFileAt(lua, 1);
    lua_settop(lua, 1);
    lua_pushboolean(lua, 0);
    lua_pushcclosure(lua, nextLine, 2);
    return 1;
}

int collectFile(lua_State* lua) {
    auto* file = fileAt(lua, 1);
    if (!file)
        return 0;
    std::string error;
    if (file->isOpen)
        close(lua, *file, error);
    file->~LuaFile();
    return 0;
}

int fileText(lua_State* lua) {
    const auto* file = fileAt(lua, 1);
    push(lua, file && file->isOpen ? "file" : "file (closed)");
    return 1;
}

/// Leaves the default file or nil.
LuaFile* defaultFile(lua_State* lua, char* key) {
    lua_pushlightuserdata(lua, key);
    lua_rawget(lua, LUA_REGISTRYINDEX);
    auto* file = fileAt(lua, -1);
    return file && file->isOpen ? file : nullptr;
}

int setDefault(lua_State* lua, char* key, std::string_view mode) {
    if (!lua_isnoneornil(lua, 1)) {
        lua_pushlightuserdata(lua, key);
        if (fileAt(lua, 1)) {
            lua_pushvalue(lua, 1);
        } else {
            std::string error;
            if (!open(lua, text(lua, 1), mode, error))
                return luaL_error(lua, "%s", error.c_str());
        }
        lua_rawset(lua, LUA_REGISTRYINDEX);
    }
    defaultFile(lua, key);
    return 1;
}

int input(lua_State* lua) {
    return setDefault(lua, &defaultInput, "r");
}

int output(lua_State* lua) {
    return setDefault(lua, &defaultOutput, "w");
}

int readDefault(lua_State* lua) {
    auto* file = defaultFile(lua, &defaultInput);
    lua_insert(lua, 1);
    return file ? read(lua, *file, 2) : failure(lua, "there is no input");
}

int writeDefault(lua_State* lua) {
    auto* file = defaultFile(lua, &defaultOutput);
    lua_insert(lua, 1);
    if (file)
        return write(lua, *file, 2);
    std::string line;
    for (int i = 2; i <= lua_gettop(lua); ++i)
        line += text(lua, i);
    LuaState::of(lua).environment().print(line);
    lua_pushboolean(lua, 1);
    return 1;
}

int lines(lua_State* lua) {
    const bool isNamed = !lua_isnoneornil(lua, 1);
    if (isNamed) {
        std::string error;
        if (!open(lua, text(lua, 1), "r", error))
            return luaL_error(lua, "%s", error.c_str());
    } else if (!defaultFile(lua, &defaultInput)) {
        return luaL_error(lua, "there is no input");
    }
    lua_pushboolean(lua, isNamed);
    lua_pushcclosure(lua, nextLine, 2);
    return 1;
}

int closeFunction(lua_State* lua) {
    if (!lua_isnoneornil(lua, 1))
        return fileClose(lua);
    auto* file = defaultFile(lua, &defaultOutput);
    std::string error;
    const bool isDone = file && close(lua, *file, error);
    return pushOutcome(lua, isDone, error);
}

int type(lua_State* lua) {
    luaL_checkany(lua, 1);
    if (const auto* file = fileAt(lua, 1))
        push(lua, file->isOpen ? "file" : "closed file");
    else
        lua_pushnil(lua);
    return 1;
}

} // namespace

void pushFileLibrary(lua_State* lua) {
    static constexpr luaL_Reg Methods[] = {{"read", fileRead}, {"write", fileWrite}, {"lines", fileLines},
        {"close", fileClose}, {"flush", fileFlush}, {"seek", fileSeek}, {"setvbuf", fileBuffer}, {nullptr, nullptr}};
    static constexpr luaL_Reg Functions[] = {{"open", openFunction}, {"lines", lines}, {"input", input},
        {"output", output}, {"read", readDefault}, {"write", writeDefault}, {"close", closeFunction}, {"type", type}};
    lua_pushlightuserdata(lua, &fileKind);
    pushObjectMetatable(lua, Methods);
    lua_pushcfunction(lua, collectFile);
    lua_setfield(lua, -2, "__gc");
    lua_pushcfunction(lua, fileText);
    lua_setfield(lua, -2, "__tostring");
    lua_rawset(lua, LUA_REGISTRYINDEX);
    lua_newtable(lua);
    for (const auto& [name, function] : Functions) {
        lua_pushcfunction(lua, function);
        lua_setfield(lua, -2, name);
    }
}

} // namespace Ostrel
