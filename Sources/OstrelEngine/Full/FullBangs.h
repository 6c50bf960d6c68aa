#pragma once

#include "OstrelEngine/Full/ActionHost.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Ostrel {

/// The arguments of a bang as it runs.
class BangArguments {
public:
    BangArguments(std::span<const ActionArgument> arguments, const FormulaNames& names, std::string_view section)
        : arguments_(arguments)
        , names_(names)
        , section_(section) { }

    std::size_t count() const { return arguments_.size(); }
    /// Empty when it is missing.
    std::string text(std::size_t index) const;
    /// The same for a text that is stored and read again: with the marks of LiteralMarks.
    std::string_view stored(std::size_t index) const;
    /// The same, but a formula in parentheses becomes its result.
    std::string computed(std::size_t index) const;
    /// A number or a formula in parentheses, which may name measures.
    double number(std::size_t index, double fallback) const;
    /// The section whose action this is; empty for one from outside.
    std::string_view section() const { return section_; }

private:
    std::optional<double> formula(std::size_t index) const;

    std::span<const ActionArgument> arguments_;
    const FormulaNames& names_;
    std::string_view section_;
};

/// A row of the table of bangs.
struct BangRow {
    static constexpr std::int8_t NoConfig = -1;
    /// The last argument when their number is odd.
    static constexpr std::int8_t OddConfig = -2;
    /// When a script runs the bang: at once, or after the outermost call into a script.
    enum class Timing : std::uint8_t { AtOnce, AfterScript };

    std::string_view name;
    /// Without these many arguments nothing is done.
    std::int8_t required;
    /// The place of the optional config, which says whose skin is meant, or one of the above.
    std::int8_t config;
    Timing timing;
    void (*run)(ActionHost& host, const BangArguments& arguments);
    /// The place of the group for a bang to the skins of a group, which `run` and the bang of the name `plain` get
    /// without it, behind `first` if that is not empty.
    std::int8_t skinGroup = NoConfig;
    std::string_view plain = {};
    std::string_view first = {};
};

/// The rows for windows, other skins and the program.
std::span<const BangRow> windowBangs();

/// Null for a name that is no bang; in any case, without "!" and old prefix. `Delay` is none: it is the runner's.
const BangRow* findFullBang(std::string_view name);

} // namespace Ostrel
