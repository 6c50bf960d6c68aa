#pragma once

#include "OstrelEngine/Geometry.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class BaseMeasure;

/// What a script may do with its skin, besides what every measure may (`FullMeasureHost`). Names in any case. Sections
/// live as long as the skin, so a meter is known by its place in drawing order. Outlives all scripts. Main thread.
class ScriptHost {
public:
    virtual ~ScriptHost() = default;

    /// A script begins and ends; calls may nest. Bangs that redraw, update, command, open or end skins wait for the end
    /// of the outermost call and then run in order; those that only store something (variables, options, keys, what is
    /// shown, disabled or paused) run at once, so that the script sees them when it reads back.
    virtual void scriptWillRun() = 0;
    virtual void scriptDidRun() = 0;
    /// One bang: name without regard to "!", arguments as they are, no reference in them resolved.
    virtual void bang(const BaseMeasure& script, std::string_view name, const std::vector<std::string>& arguments) = 0;
    /// A whole action string, as this section's; its bangs keep the same order.
    virtual void action(const BaseMeasure& script, std::string_view text) = 0;

    /// A variable or built-in value as it is now, references in it resolved; absent when there is none. The view lives
    /// until the next call.
    virtual std::optional<std::string_view> variable(std::string_view name) = 0;
    /// The number of a text that is a number or a formula, bare names of measures included.
    virtual std::optional<double> formula(std::string_view text) = 0;

    /// The present text of an option with references resolved, those to sections only when asked for; styles count.
    /// Absent when it is not written.
    virtual std::optional<std::string> option(const BaseMeasure& measure, std::string_view name, bool withSections) = 0;
    virtual std::optional<std::string> option(std::size_t meter, std::string_view name, bool withSections) = 0;

    /// Absent when there is none.
    virtual std::optional<std::size_t> meter(std::string_view name) const = 0;
    virtual const std::string& meterName(std::size_t meter) const = 0;
    /// X and Y as the options say, before relative places are added up; real width and height.
    virtual Rect meterOptionFrame(std::size_t meter) const = 0;
    /// After layout, as `[Meter:X]` gives it.
    virtual Rect meterFrame(std::size_t meter) const = 0;
    enum class Side { X, Y, Width, Height };
    /// Until the option is read again.
    virtual void setMeterSide(std::size_t meter, Side side, double value) = 0;

    /// In widget units on the screen, origin top left.
    virtual Rect windowFrame() const = 0;
    virtual void moveWindow(double x, double y) = 0;
    /// Opacity 0 to 255, over FadeDuration.
    virtual void fadeWindow(double from, double to) = 0;
};

/// A script measure as its skin sees it. Main thread.
class SkinScript {
public:
    virtual ~SkinScript() = default;
    /// Runs the body of the file. Called once all sections exist, before the first cycle, in file order.
    virtual void load() = 0;
    /// Calls `Initialize`, the first time only. At the measure's turn in the first cycle, disabled or not.
    virtual void initialize() = 0;
    /// `[&Script:Function(arguments)]`: arguments are number, formula in parentheses, text in quotes, true, false, nil,
    /// each with its references resolved. After an error the empty text.
    virtual std::string callFunction(std::string_view function, const std::vector<std::string>& arguments) = 0;
    /// `[&Script:name]`: a global variable.
    virtual std::string globalText(std::string_view name) = 0;
};

} // namespace Ostrel
