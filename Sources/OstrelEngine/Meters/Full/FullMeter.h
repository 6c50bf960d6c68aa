#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

struct PackFolders;
struct Platform;

/// What a meter of the full dialect knows of its skin. Outlives the meter.
struct FullMeterContext {
    const PackFolders& folders;
    const Platform& platform;
    /// Milliseconds between the frames of a transition.
    double transitionUpdate = 100;
};

/// Base of the meters of the full dialect: box, padding, background, bevel, transformation matrix and container are
/// drawn here; a meter adds its content. `update` takes options and values in; drawing shows what the last `update`
/// took. Options are read again only when `optionsRevision` has grown.
class FullMeter : public MeterRenderer {
public:
    FullMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);

    /// One update of the meter, timed or by bang: options, values, one sample for a graph. Values are in binding order
    /// and have a place for each number, empty where nothing is bound.
    void update(MeasureValues values);

    /// The whole box with padding, as of the last update: written sizes, else those of the content. Whole pixels.
    Size boxSize() const;
    /// What is subtracted from X and Y to find the box's corner: not 0 only where the meter aligns itself to its
    /// anchor.
    virtual Point anchorOffset(Size box) const;

    /// Whose pixels count under the pointer: all that is drawn in the box, or the meter's own alone, also outside it.
    enum class MouseArea { Box, OwnPixels };
    virtual MouseArea mouseArea() const { return MouseArea::Box; }
    /// With `OwnPixels`: whether the point in widget coordinates is on a pixel that the meter paints.
    virtual bool isSolidAt(Point) { return true; }

    /// What the pointer does to a button. True when it looks different now.
    enum class PointerState { Outside, Over, Pressed };
    virtual bool setPointerState(PointerState) { return false; }

    /// Seconds until the content changes by itself, absent when it rests; `advance` then takes the step.
    virtual std::optional<double> secondsUntilNextFrame() const { return std::nullopt; }
    virtual void advance() { }

    /// The meter whose picture cuts and fades this one; null for none. Held weakly.
    void setContainer(std::weak_ptr<FullMeter> container);

    void draw(QPainter& painter, MeasureValues values) final;

protected:
    const FullMeterContext& context() const { return context_; }
    /// Where the content goes: the frame without its padding.
    Rect contentRect() const;
    /// The options have changed since the last `takeValues`.
    virtual void readOptions() = 0;
    virtual void takeValues(MeasureValues values) = 0;
    /// The content's own size for the directions that are not written.
    virtual Size contentSize(std::optional<double> width, std::optional<double> height) const = 0;
    virtual void drawContent(QPainter& painter) = 0;

private:
    const FullMeterContext& context_;
};

} // namespace Ostrel
