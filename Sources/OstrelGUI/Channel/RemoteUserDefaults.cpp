#include "OstrelGUI/Channel/RemoteUserDefaults.h"

#include "OstrelGUI/Channel/LibraryMessages.h"
#include "OstrelGUI/Channel/WindowChannel.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

namespace {

template <typename Value, typename Values> std::optional<Value> valueOf(const Values& values, std::string_view key) {
    const auto found = values.find(key);
    const auto* value = found == values.end() ? nullptr : std::get_if<Value>(&found->second);
    return value ? std::optional(*value) : std::nullopt;
}

} // namespace

std::optional<std::string> RemoteUserDefaults::string(std::string_view key) const {
    return valueOf<std::string>(values_, key);
}

std::optional<bool> RemoteUserDefaults::boolean(std::string_view key) const {
    return valueOf<bool>(values_, key);
}

void RemoteUserDefaults::setString(std::string_view key, std::string_view value) {
    values_.insert_or_assign(std::string(key), std::string(value));
    channel_.send({{"type", "set"}, {"key", key}, {"value", value}});
}

void RemoteUserDefaults::setBoolean(std::string_view key, bool value) {
    values_.insert_or_assign(std::string(key), value);
    channel_.send({{"type", "set"}, {"key", key}, {"value", value}});
}

bool RemoteUserDefaults::handle(const nlohmann::json& message) {
    if (LibraryMessages::text(message, "type") != "settings")
        return false;
    const auto values = message.value("values", nlohmann::json::object());
    for (const auto& [key, value] : values.items()) {
        if (value.is_string())
            values_.insert_or_assign(key, value.get<std::string>());
        else if (value.is_boolean())
            values_.insert_or_assign(key, value.get<bool>());
    }
    return true;
}

} // namespace Ostrel
