#include "OstrelPlatform/Linux/Players/BusValue.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <dbus/dbus.h>

#include <cmath>
#include <limits>

namespace Ostrel {

namespace {

/// A list in a track in a player's properties takes five levels.
constexpr int MaxDepth = 8;

BusValue read(DBusMessageIter& cursor, int depth);

std::string cut(std::string_view text) {
    if (text.size() <= BusValue::MaxTextBytes)
        return std::string(text);
    std::size_t end = BusValue::MaxTextBytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;
    return std::string(text.substr(0, end));
}

template <typename Number> Number basic(DBusMessageIter& cursor) {
    Number value{};
    dbus_message_iter_get_basic(&cursor, &value);
    return value;
}

std::int64_t unsignedInteger(std::uint64_t value) {
    constexpr auto Largest = std::numeric_limits<std::int64_t>::max();
    return value > static_cast<std::uint64_t>(Largest) ? Largest : static_cast<std::int64_t>(value);
}

std::shared_ptr<const BusProperties> readDictionary(DBusMessageIter entries, int depth) {
    auto result = std::make_shared<BusProperties>();
    for (; dbus_message_iter_get_arg_type(&entries) == DBUS_TYPE_DICT_ENTRY && result->size() < BusValue::MaxEntries;
         dbus_message_iter_next(&entries)) {
        DBusMessageIter entry;
        dbus_message_iter_recurse(&entries, &entry);
        auto key = read(entry, depth).text();
        dbus_message_iter_next(&entry);
        if (key)
            result->insert_or_assign(std::move(*key), read(entry, depth));
    }
    return result;
}

std::vector<std::string> readTexts(DBusMessageIter elements, int depth) {
    std::vector<std::string> result;
    for (; dbus_message_iter_get_arg_type(&elements) != DBUS_TYPE_INVALID && result.size() < BusValue::MaxEntries;
         dbus_message_iter_next(&elements)) {
        if (auto text = read(elements, depth).text())
            result.push_back(std::move(*text));
    }
    return result;
}

BusValue read(DBusMessageIter& cursor, int depth) {
    if (depth > MaxDepth)
        return {};
    switch (dbus_message_iter_get_arg_type(&cursor)) {
    case DBUS_TYPE_BOOLEAN:
        return {basic<dbus_bool_t>(cursor) != 0};
    case DBUS_TYPE_BYTE:
        return {std::int64_t{basic<std::uint8_t>(cursor)}};
    case DBUS_TYPE_INT16:
        return {std::int64_t{basic<std::int16_t>(cursor)}};
    case DBUS_TYPE_UINT16:
        return {std::int64_t{basic<std::uint16_t>(cursor)}};
    case DBUS_TYPE_INT32:
        return {std::int64_t{basic<std::int32_t>(cursor)}};
    case DBUS_TYPE_UINT32:
        return {std::int64_t{basic<std::uint32_t>(cursor)}};
    case DBUS_TYPE_INT64:
        return {basic<std::int64_t>(cursor)};
    case DBUS_TYPE_UINT64:
        return {unsignedInteger(basic<std::uint64_t>(cursor))};
    case DBUS_TYPE_DOUBLE:
        return {basic<double>(cursor)};
    case DBUS_TYPE_STRING:
    case DBUS_TYPE_OBJECT_PATH:
    case DBUS_TYPE_SIGNATURE:
        return {cut(basic<const char*>(cursor))};
    case DBUS_TYPE_VARIANT: {
        DBusMessageIter inner;
        dbus_message_iter_recurse(&cursor, &inner);
        return read(inner, depth + 1);
    }
    case DBUS_TYPE_ARRAY: {
        DBusMessageIter inner;
        dbus_message_iter_recurse(&cursor, &inner);
        if (dbus_message_iter_get_element_type(&cursor) == DBUS_TYPE_DICT_ENTRY)
            return {readDictionary(inner, depth + 1)};
        return {readTexts(inner, depth + 1)};
    }
    default:
        return {};
    }
}

} // namespace

std::optional<std::string> BusValue::text() const {
    if (const auto* text = std::get_if<std::string>(&content))
        return *text;
    const auto* list = std::get_if<std::vector<std::string>>(&content);
    if (!list)
        return std::nullopt;
    std::string joined;
    for (const auto& element : *list) {
        if (element.empty())
            continue;
        joined.append(joined.empty() ? "" : ", ").append(element);
    }
    return cut(joined);
}

std::optional<double> BusValue::number() const {
    std::optional<double> value;
    if (const auto* integer = std::get_if<std::int64_t>(&content))
        value = static_cast<double>(*integer);
    else if (const auto* real = std::get_if<double>(&content))
        value = *real;
    else if (const auto* text = std::get_if<std::string>(&content))
        value = parseDouble(trimmed(*text));
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<bool> BusValue::boolean() const {
    if (const auto* truth = std::get_if<bool>(&content))
        return *truth;
    const auto value = number();
    return value ? std::optional(*value != 0) : std::nullopt;
}

const BusProperties& BusValue::dictionary() const {
    static const BusProperties empty;
    const auto* found = std::get_if<std::shared_ptr<const BusProperties>>(&content);
    return found && *found ? **found : empty;
}

const BusValue& property(const BusProperties& properties, std::string_view name) {
    static const BusValue nothing;
    const auto found = properties.find(name);
    return found == properties.end() ? nothing : found->second;
}

BusValue readBusValue(DBusMessageIter& cursor) {
    return read(cursor, 0);
}

} // namespace Ostrel
