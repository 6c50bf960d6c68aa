#pragma once

#include "OstrelEngine/Full/FullSkinHost.h"

#include <string_view>
#include <vector>

namespace Ostrel {

class FormulaNames;
class SkinVariables;
struct PackFolders;
struct Platform;

/// Of a switch that bangs turn.
enum class Switch { Off, On, Toggle };

/// What bangs do to mouse actions: a disabled one still catches the pointer, a cleared one is as if it were not
/// written, a toggle goes back to the last of the two.
enum class MouseActionChange { Disable, Enable, Clear, Toggle };

/// Which measures or meters a bang means.
struct SectionChoice {
    enum class Kind { Name, Group, All };
    Kind kind = Kind::Name;
    std::string_view name;
};

/// What actions may do with the skin that they belong to. Each does nothing for sections that are not there. Texts that
/// are stored (`setOption`, `setVariable`) may hold the marks of LiteralMarks.
class ActionHost {
public:
    virtual ~ActionHost() = default;
    virtual const PackFolders& folders() const = 0;
    virtual const Platform& platform() const = 0;
    virtual FullSkinHost& host() const = 0;
    virtual const SkinVariables& variableTable() const = 0;
    /// Bare names in the formulas of bangs.
    virtual const FormulaNames& measureNames() const = 0;
    /// One line with the section, each text once a minute.
    virtual void log(LogLevel level, std::string_view section, std::string_view text) = 0;

    virtual void setVariable(std::string_view name, std::string_view value) = 0;
    /// An empty value removes the option. Read at the section's next update, which is dynamic once.
    virtual void setOption(const SectionChoice& sections, std::string_view key, std::string_view value) = 0;

    virtual void switchMeters(const SectionChoice& meters, Switch shown) = 0;
    virtual void moveMeter(std::string_view meter, double x, double y) = 0;
    /// Whatever the divider; nothing is drawn.
    virtual void updateMeters(const SectionChoice& meters) = 0;

    /// `names` are separated by "|", or "*". The section Rainmeter is one too.
    virtual void changeMouseActions(const SectionChoice& meters, std::string_view names, MouseActionChange change) = 0;

    virtual void switchMeasures(const SectionChoice& measures, Switch enabled) = 0;
    virtual void pauseMeasures(const SectionChoice& measures, Switch paused) = 0;
    /// Whatever the divider. Reaches a paused measure, not a disabled one.
    virtual void updateMeasures(const SectionChoice& measures) = 0;
    virtual void commandMeasure(std::string_view measure, std::string_view arguments) = 0;

    /// Whether the skin itself is in a group of skins.
    virtual bool isInGroup(std::string_view group) const = 0;
    virtual Size windowSize() const = 0;
    /// The skin's own menu, as its texts are now.
    virtual std::vector<SkinMenuItem> menuItems() const = 0;
    /// A whole update, dividers obeyed; the timer starts its period again.
    virtual void update() = 0;
    /// Draws with held values.
    virtual void redraw() = 0;
    /// What waited for a delay has run; nobody else is there to see what it changed.
    virtual void actionsDidEnd() = 0;
};

} // namespace Ostrel
