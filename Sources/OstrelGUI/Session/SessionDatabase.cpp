#include "OstrelGUI/Session/SessionDatabase.h"

#include "OstrelCore/Text/Numbers.h"

#include <sqlite3.h>

#include <filesystem>
#include <system_error>
#include <utility>

namespace Ostrel {

namespace {

namespace fs = std::filesystem;

/// Counts the forms of the file.
constexpr int Version = 1;
constexpr std::string_view InMemory = ":memory:";
/// Another process of the application has the file open for a moment at most.
constexpr int BusyMilliseconds = 2000;

// A commit is one write into the log, which survives the end of the process. The disk is awaited only when the log is
// folded, so that a widget that is dragged costs no wait.
constexpr const char* Setup
    = "PRAGMA journal_mode = WAL;"
      "PRAGMA synchronous = NORMAL;"
      "CREATE TABLE IF NOT EXISTS packs (root TEXT PRIMARY KEY, json TEXT NOT NULL) WITHOUT ROWID;";

bool execute(sqlite3* database, const char* sql) {
    return sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool isUnreadable(int code) {
    return code == SQLITE_NOTADB || code == SQLITE_CORRUPT;
}

bool bind(sqlite3_stmt* statement, int index, std::string_view text) {
    // A null pointer would bind NULL.
    const char* bytes = text.empty() ? "" : text.data();
    return sqlite3_bind_text64(statement, index, bytes, text.size(), SQLITE_TRANSIENT, SQLITE_UTF8) == SQLITE_OK;
}

/// The file with its log, which belongs to it.
void setAside(const std::string& path) {
    std::error_code error;
    std::string suffix = ".bak";
    for (std::int64_t number = 2; fs::exists(path + suffix, error); ++number)
        suffix = ".bak" + formatInteger(number);
    for (const char* part : {"", "-wal", "-shm"})
        fs::rename(path + part, path + suffix + part, error);
}

} // namespace

void SessionDatabase::Close::operator()(sqlite3* database) const {
    sqlite3_close(database);
}

void SessionDatabase::Close::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

SessionDatabase::SessionDatabase(const std::optional<std::string>& path) {
    if (path) {
        std::error_code error;
        fs::create_directories(fs::path(*path).parent_path(), error);
        auto opening = open(*path);
        if (opening == Opening::Unreadable) {
            database_.reset();
            setAside(*path);
            opening = open(*path);
        }
        isStored_ = opening == Opening::Done;
    }
    if (!isStored_)
        open(std::string(InMemory));
}

SessionDatabase::~SessionDatabase() = default;

SessionDatabase::Opening SessionDatabase::open(const std::string& path) {
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    database_.reset(opened);
    if (code != SQLITE_OK)
        return Opening::Refused;
    sqlite3_busy_timeout(opened, BusyMilliseconds);
    const auto version = prepared("PRAGMA user_version");
    if (!version || sqlite3_step(version.get()) != SQLITE_ROW)
        return isUnreadable(sqlite3_errcode(opened)) ? Opening::Unreadable : Opening::Refused;
    const int found = sqlite3_column_int(version.get(), 0);
    if (found > Version)
        return Opening::Unreadable;
    sqlite3_reset(version.get());
    const bool isSetUp = execute(opened, Setup)
        && (found == Version || execute(opened, ("PRAGMA user_version = " + formatInteger(Version)).c_str()));
    if (isSetUp)
        return Opening::Done;
    return isUnreadable(sqlite3_errcode(opened)) ? Opening::Unreadable : Opening::Refused;
}

SessionDatabase::Statement SessionDatabase::prepared(std::string_view sql) const {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database_.get(), sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
    return Statement(statement);
}

bool SessionDatabase::run(std::string_view sql, std::string_view first, std::optional<std::string_view> second) const {
    const auto statement = prepared(sql);
    return statement && bind(statement.get(), 1, first) && (!second || bind(statement.get(), 2, *second))
        && sqlite3_step(statement.get()) == SQLITE_DONE;
}

std::optional<std::string> SessionDatabase::pack(std::string_view root) const {
    const auto statement = prepared("SELECT json FROM packs WHERE root = ?1");
    if (!statement || !bind(statement.get(), 1, root) || sqlite3_step(statement.get()) != SQLITE_ROW)
        return std::nullopt;
    const auto* text = static_cast<const char*>(sqlite3_column_blob(statement.get(), 0));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement.get(), 0));
    return text ? std::string(text, size) : std::string();
}

bool SessionDatabase::setPack(std::string_view root, std::string_view json) {
    return run("INSERT OR REPLACE INTO packs (root, json) VALUES (?1, ?2)", root, json);
}

bool SessionDatabase::removePack(std::string_view root) {
    return run("DELETE FROM packs WHERE root = ?1", root, std::nullopt);
}

} // namespace Ostrel
