#pragma once

#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Meters/Full/NumberFormat.h"
#include "OstrelEngine/Meters/Full/ToolTip.h"
#include "OstrelEngine/Meters/MeterProtocol.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

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
    ~FullMeter() override;

    /// One update of the meter, timed or by bang: options, values, one sample for a graph. Values are in binding order
    /// and have a place for each number, empty where nothing is bound.
    void update(MeasureValues values);
    /// False: an update with the options and values of the one before changes nothing and may be left out.
    virtual bool needsEveryUpdate() const { return true; }

    /// Before the first update: the box is as large as the written sizes tell, so that meters which are updated
    /// earlier can place themselves beside it.
    void takeWrittenSize();
    /// The whole box with padding, as of the last update: written sizes, else those of the content. Whole pixels.
    Size boxSize() const { return box_; }
    /// What is subtracted from X and Y to find the box's corner: not 0 only where the meter aligns itself to its
    /// anchor.
    virtual Point anchorOffset(Size /*box*/) const { return {}; }

    /// Whose pixels count under the pointer: all that is drawn in the box, or the meter's own alone, also outside it.
    enum class MouseArea { Box, OwnPixels };
    virtual MouseArea mouseArea() const { return MouseArea::Box; }
    /// With `OwnPixels`: whether the point in widget coordinates is on a pixel that the meter paints. The
    /// transformation matrix and the container are not looked at.
    virtual bool isSolidAt(Point) { return true; }

    /// What the pointer does to a button. True when it looks different now.
    enum class PointerState { Outside, Over, Pressed };
    virtual bool setPointerState(PointerState) { return false; }

    /// Seconds until the content changes by itself, absent when it rests; `advance` then takes the step.
    virtual std::optional<double> secondsUntilNextFrame() const { return std::nullopt; }
    virtual void advance() { }

    /// What to show while the pointer rests on the meter, as of the last update.
    const ToolTip& toolTip() const { return toolTip_; }

    /// The meter whose picture cuts and fades this one; null for none. Held weakly. The container of a container is
    /// not looked at, so a ring of them is drawn as pairs.
    void setContainer(std::weak_ptr<FullMeter> container);

    /// Draws what the last `update` took; the values are not looked at.
    void draw(QPainter& painter, MeasureValues values) final;
    bool updateAppearance(MeasureValues values) final;
    std::optional<Rect> changedPart() const final { return changedPart_; }
    Rect paintRect(MeasureValues values) final;

protected:
    using ColorBytes = OptionValues::ColorBytes;

    const FullMeterContext& context() const { return context_; }
    /// Where the content goes: the frame without its padding.
    Rect contentRect() const;
    /// The written size in one direction, not negative, whole pixels, without padding.
    std::optional<double> writtenWidth() const;
    std::optional<double> writtenHeight() const;
    /// How much longer the transformation matrix makes a line, on average; 1 without one.
    double matrixScale() const;
    /// The switch AntiAlias, else what the meter does without it.
    bool isSmooth(bool otherwise) const;

    // The value of an option, or the fallback when it is missing, empty or not of that kind.
    double number(const CaseKey& key, double fallback) const;
    int integer(const CaseKey& key, int fallback) const;
    bool isOn(const CaseKey& key, bool fallback) const;
    ColorBytes color(const CaseKey& key, ColorBytes fallback) const;
    std::string_view text(const CaseKey& key, std::string_view fallback = {}) const;

    /// The next draw looks different: anywhere, or in this part alone, counted from the content's top left. To be
    /// called whenever what `drawContent` draws for an unchanged frame has changed. A changed background, padding or
    /// matrix is noted by the base.
    void contentDidChange();
    void contentDidChange(const Rect& part);

    /// The options have changed since the last call, which is the first in the first update.
    virtual void readOptions() = 0;
    /// Takes the values of an update in, after the options.
    virtual void takeValues(MeasureValues values) = 0;
    /// The content's own size for the directions that are not written; the others are given and come back as they are.
    virtual Size contentSize(std::optional<double> width, std::optional<double> height) const = 0;
    /// True: W and H have no effect, the content's own size counts.
    virtual bool ignoresWrittenSize() const { return false; }
    /// Draws into widget coordinates, at `contentRect`. Leaves clip, transformation, opacity and composition as they
    /// were; sets pen, brush and smoothing itself.
    virtual void drawContent(QPainter& painter) = 0;
    /// Holds every pixel that `drawContent` touches, in widget coordinates.
    virtual Rect contentPaintRect() const { return contentRect(); }
    /// False: the painter that `drawContent` gets is only moved and scaled alike in both directions; where the matrix
    /// turns or mirrors, the base turns a picture of the content.
    virtual bool drawsUnderAnyTransform() const { return false; }
    /// False: neither background nor content is drawn.
    virtual bool isDrawn() const { return true; }

    /// How many of the bound values a tool tip may name, and how it shows their numbers.
    virtual std::size_t toolTipPlaces() const { return 1; }
    virtual NumberFormat toolTipNumbers() const { return {}; }

    void optionsDidChange() final { }

private:
    struct State;

    void drawAlone(QPainter& painter);
    void drawBackground(QPainter& painter);
    void drawTurnedContent(QPainter& painter);
    void drawInContainer(QPainter& painter, FullMeter& container);
    Rect ownPaintRect() const;

    const FullMeterContext& context_;
    std::unique_ptr<State> state_;
    Size box_;
    ToolTip toolTip_;
    std::optional<Rect> changedPart_;
};

} // namespace Ostrel
