#pragma once

#include "OstrelPlatform/UserDefaults.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace Ostrel {

/// Settings that end with their object.
class InMemoryUserDefaults final : public UserDefaults {
public:
    /// Put behind the name of a key whose bytes were set aside, with a number from the second on.
    static constexpr std::string_view AsideSuffix = ".bak";

    std::optional<std::string> data(std::string_view key) const override;
    bool setData(std::string_view key, std::string_view bytes) override;
    void setDataAside(std::string_view key) override;
    std::optional<std::string> string(std::string_view key) const override;
    void setString(std::string_view key, std::string_view value) override;
    std::optional<bool> boolean(std::string_view key) const override;
    void setBoolean(std::string_view key, bool value) override;
    std::optional<std::string> folder() const override { return std::nullopt; }

private:
    template <typename Value> using Table = std::map<std::string, Value, std::less<>>;

    Table<std::string> strings_;
    Table<bool> booleans_;
    mutable std::mutex mutex_;
    /// Guarded by `mutex_`.
    Table<std::string> data_;
};

} // namespace Ostrel
