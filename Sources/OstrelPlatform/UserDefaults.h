#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// The user's settings of this application, kept between starts. A key that is missing or holds another kind of value
/// reads as absent. A setter returns when the value is safe against the end of this process; a setting that cannot be
/// stored is kept for the life of the process. What another process of the application has stored is seen. Main
/// thread, but for bytes, which any thread may read and set.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;
    virtual std::optional<std::string> data(std::string_view key) const = 0;
    /// The file that holds the bytes of the key and nothing else, whether it exists or not; never changed in place.
    /// Absent where bytes are kept otherwise.
    virtual std::optional<std::string> dataFile(std::string_view key) const {
        static_cast<void>(key);
        return std::nullopt;
    }
    /// Replaces the bytes as a whole or not at all; false when they are kept for the life of the process only.
    virtual bool setData(std::string_view key, std::string_view bytes) = 0;
    /// Moves the bytes of the key out of the way, to where a person can find them, whether they can be read or not.
    /// Earlier ones that were moved stay too.
    virtual void setDataAside(std::string_view key) = 0;
    virtual std::optional<std::string> string(std::string_view key) const = 0;
    virtual void setString(std::string_view key, std::string_view value) = 0;
    virtual std::optional<bool> boolean(std::string_view key) const = 0;
    virtual void setBoolean(std::string_view key, bool value) = 0;
    /// Where files that belong to a setting are kept; it may not exist yet. Absent where nothing outlives the process.
    virtual std::optional<std::string> folder() const = 0;
};

} // namespace Ostrel
