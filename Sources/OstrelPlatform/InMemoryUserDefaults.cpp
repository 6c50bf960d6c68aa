#include "OstrelPlatform/InMemoryUserDefaults.h"

#include <optional>

namespace Ostrel {

namespace {

template <typename Value>
std::optional<Value> valueOf(const std::map<std::string, Value, std::less<>>& table, std::string_view key) {
    const auto found = table.find(key);
    return found == table.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

std::optional<std::string> InMemoryUserDefaults::data(std::string_view key) const {
    const std::scoped_lock lock(mutex_);
    return valueOf(data_, key);
}

bool InMemoryUserDefaults::setData(std::string_view key, std::string_view bytes) {
    const std::scoped_lock lock(mutex_);
    data_.insert_or_assign(std::string(key), std::string(bytes));
    return true;
}

void InMemoryUserDefaults::setDataAside(std::string_view key) {
    const std::scoped_lock lock(mutex_);
    auto node = data_.extract(data_.find(key) == data_.end() ? std::string() : std::string(key));
    if (node.empty())
        return;
    node.key() = std::string(key).append(AsideSuffix);
    for (int number = 2; data_.contains(node.key()); ++number)
        node.key() = std::string(key).append(AsideSuffix).append(std::to_string(number));
    data_.insert(std::move(node));
}

std::optional<std::string> InMemoryUserDefaults::string(std::string_view key) const {
    return valueOf(strings_, key);
}

void InMemoryUserDefaults::setString(std::string_view key, std::string_view value) {
    booleans_.erase(std::string(key));
    strings_.insert_or_assign(std::string(key), std::string(value));
}

std::optional<bool> InMemoryUserDefaults::boolean(std::string_view key) const {
    return valueOf(booleans_, key);
}

void InMemoryUserDefaults::setBoolean(std::string_view key, bool value) {
    strings_.erase(std::string(key));
    booleans_.insert_or_assign(std::string(key), value);
}

} // namespace Ostrel
