#pragma once

#include "OstrelEngine/Full/ActionHost.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Ostrel {

/// The arguments of a bang as it runs. Stored texts may be sealed; `text` and `number` are not.
class BangArguments {
public:
    BangArguments(std::span<const std::string> arguments, std::string_view section)
        : arguments_(arguments)
        , section_(section) { }

    std::size_t count() const { return arguments_.size(); }
    /// Empty when it is missing.
    std::string_view stored(std::size_t index) const;
    std::string text(std::size_t index) const;
    double number(std::size_t index, double fallback) const;
    /// The section whose action this is.
    std::string_view section() const { return section_; }

private:
    std::span<const std::string> arguments_;
    std::string_view section_;
};

/// A row of the table of bangs.
struct BangRow {
    static constexpr std::int8_t NoConfig = -1;

    std::string_view name;
    /// Without these many arguments nothing is done.
    std::int8_t required;
    /// Where the optional config stands; `NoConfig` for a bang without one.
    std::int8_t config;
    void (*run)(ActionHost& host, const BangArguments& arguments);
};

/// Null for a name that is no bang; in any case, without "!" and old prefix.
const BangRow* findFullBang(std::string_view name);

} // namespace Ostrel
