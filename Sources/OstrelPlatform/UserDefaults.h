#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// The user's settings of this application, kept between starts. A key that is missing or holds another kind of value
/// reads as absent. A setter returns when the value is safe against the end of this process; a setting that cannot be
/// stored is kept for the life of the process. Main thread.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;
    virtual std::optional<std::string> data(std::string_view key) const = 0;
    virtual void setData(std::string_view key, std::string_view bytes) = 0;
    virtual std::optional<std::string> string(std::string_view key) const = 0;
    virtual void setString(std::string_view key, std::string_view value) = 0;
    virtual std::optional<bool> boolean(std::string_view key) const = 0;
    virtual void setBoolean(std::string_view key, bool value) = 0;
};

} // namespace Ostrel
