#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

struct DBusMessageIter;

namespace Ostrel {

struct BusValue;
using BusProperties = std::map<std::string, BusValue, std::less<>>;

/// What a peer on the bus sent, whatever its type: peers do not keep to the types that their protocols name.
struct BusValue {
    /// Longer texts are cut between two characters, longer lists and dictionaries end early.
    static constexpr std::size_t MaxTextBytes = 64 * 1024;
    static constexpr std::size_t MaxEntries = 256;

    /// Integers of every width are one; a file descriptor, a struct and the like are nothing.
    std::variant<std::monostate, bool, std::int64_t, double, std::string, std::vector<std::string>,
        std::shared_ptr<const BusProperties>>
        content;

    /// Absent when it is no text. A list gives its texts with commas between them.
    std::optional<std::string> text() const;
    /// Absent when it is no number or not finite. A text that is a number counts.
    std::optional<double> number() const;
    std::optional<bool> boolean() const;
    /// Empty when it is no dictionary.
    const BusProperties& dictionary() const;
};

/// A property, or nothing.
const BusValue& property(const BusProperties& properties, std::string_view name);

/// The value that the cursor stands at, which is left where it is.
BusValue readBusValue(DBusMessageIter& cursor);

} // namespace Ostrel
