#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace Ostrel {

/// What the user has chosen for each pack, in one SQLite file (write-ahead log). A change is safe against the end of
/// this process when its setter returns, and against a power cut soon after. A file that cannot be read, or that a
/// newer version has written, is moved aside as "<file>.bak" (".bak2", ...) with its log, and a new one is begun. Main
/// thread.
class SessionDatabase {
public:
    /// Opens or makes the file and its folder. Where that fails, or without a path, what is set lives as long as this.
    explicit SessionDatabase(const std::optional<std::string>& path);
    ~SessionDatabase();
    SessionDatabase(const SessionDatabase&) = delete;
    SessionDatabase& operator=(const SessionDatabase&) = delete;

    /// Whether what is set outlives this process.
    bool isStored() const { return isStored_; }

    /// The JSON text of the pack with this root folder, an absolute path; absent when there is none.
    std::optional<std::string> pack(std::string_view root) const;
    /// False when it cannot be stored, as on a full disk: the old text stands.
    bool setPack(std::string_view root, std::string_view json);
    bool removePack(std::string_view root);

private:
    struct Close {
        void operator()(sqlite3* database) const;
        void operator()(sqlite3_stmt* statement) const;
    };
    using Database = std::unique_ptr<sqlite3, Close>;
    using Statement = std::unique_ptr<sqlite3_stmt, Close>;
    enum class Opening { Done, Unreadable, Refused };

    Opening open(const std::string& path);
    Statement prepared(std::string_view sql) const;
    bool run(std::string_view sql, std::string_view first, std::optional<std::string_view> second) const;

    Database database_;
    bool isStored_ = false;
};

} // namespace Ostrel
