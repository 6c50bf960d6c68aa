#pragma once

#include "OstrelPlatform/UserDefaults.h"

#include <nlohmann/json_fwd.hpp>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace Ostrel {

class WindowChannel;

/// The settings as the window's process has them: read from what the channel told at its start, written through to the
/// resident process, the only one that touches the file. Binary values are none of the window's.
class RemoteUserDefaults final : public UserDefaults {
public:
    /// It outlives the settings.
    explicit RemoteUserDefaults(WindowChannel& channel)
        : channel_(channel) { }

    std::optional<std::string> data(std::string_view) const override { return std::nullopt; }
    bool setData(std::string_view, std::string_view) override { return false; }
    void setDataAside(std::string_view) override { }
    std::optional<std::string> string(std::string_view key) const override;
    void setString(std::string_view key, std::string_view value) override;
    std::optional<bool> boolean(std::string_view key) const override;
    void setBoolean(std::string_view key, bool value) override;
    std::optional<std::string> folder() const override { return std::nullopt; }

    /// Takes the message that is about settings. False for all others.
    bool handle(const nlohmann::json& message);

private:
    WindowChannel& channel_;
    std::map<std::string, std::variant<std::string, bool>, std::less<>> values_;
};

} // namespace Ostrel
