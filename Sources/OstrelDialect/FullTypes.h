#pragma once

#include <span>
#include <string_view>

namespace Ostrel {

/// What the full dialect makes of a kind of measure, plugin, meter or bang here. The report, the page for authors and
/// the tests read these tables; the factories are held against them.
struct FullType {
    enum class Support {
        Whole,
        /// Works, with something missing that `note` tells.
        Partly,
        /// Takes part as a measure of 0 and an empty text, or draws nothing; `note` says why.
        Nothing,
    };

    /// As the manual writes it.
    std::string_view name;
    Support support = Support::Whole;
    /// A sentence for the user; empty with `Whole`.
    std::string_view note = {};
    /// What a skin with it uses beyond the base dialect, in the plural; empty where the base has it too.
    std::string_view beyondBase = {};
};

namespace FullTypes {
/// Also those that may be written as plugins.
std::span<const FullType> measures();
std::span<const FullType> plugins();
std::span<const FullType> meters();

/// Null for a name that is none of them; in any case.
const FullType* find(std::span<const FullType> types, std::string_view name);
/// The name of a plugin without its folder and its ending.
std::string_view pluginName(std::string_view written);
} // namespace FullTypes

} // namespace Ostrel
