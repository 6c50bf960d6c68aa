#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

// The vocabulary of bangs and what each does to the outcome of the action string it stands in.
namespace Ostrel {

enum class Bang : std::uint8_t {
    showMeter,
    showMeterGroup,
    hideMeter,
    hideMeterGroup,
    toggleMeter,
    redraw,
    deactivateConfig,
    activateConfig,
    toggleConfig,
    commandMeasure,
    pluginBang,
    updateMeasure,
    updateMeasureGroup,
    enableMeasure,
    disableMeasure,
    pauseMeasure,
    unpauseMeasure,
    enableMeasureGroup,
    disableMeasureGroup,
    pauseMeasureGroup,
    unpauseMeasureGroup,
    writeKeyValue,
    setVariable,
    setOption,
    setOptionGroup,
    refreshApp,
    refresh,
    ignore,
};

/// How a bang's operation, true when it changed something, moves the flags of its action string.
enum class BangEffect : std::uint8_t {
    /// Handled, whatever came of it.
    handles,
    /// Handled, and asks for a publication.
    redraws,
    /// Handled; from here on a publication is asked for only if something has changed.
    redrawsIfChanged,
    /// Handled, and asks for a publication even where the operation failed.
    updates,
    /// Handled if the operation succeeded.
    acts,
    /// The same, and asks for a publication if anything in the string was handled so far.
    actsAndRedraws,
};

struct BangDescription {
    std::string_view name;
    Bang bang;
    BangEffect effect;
    /// Words without which nothing is done.
    std::uint8_t requiredWords;
};

/// Null for a name that is no bang. The name is upper-cased.
const BangDescription* findBang(std::string_view name);

/// What an action string has come to so far.
struct ActionFlags {
    bool handled = false;
    bool redraw = false;
    bool changed = false;

    /// After a bang whose operation gave `result`; absent when a needed word was missing and nothing was done.
    [[nodiscard]] ActionFlags after(BangEffect effect, std::optional<bool> result) const;
    friend bool operator==(const ActionFlags&, const ActionFlags&) = default;
};

} // namespace Ostrel
