#pragma once

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Measures/MeasureValue.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

class QPainter;

namespace Ostrel {

struct Platform;

/// A meter's place on the canvas. Only the layout gives it one.
struct MeterFrame {
    double x = 0;
    double y = 0;
    double w = 0;
    double h = 0;

    Rect rect() const { return {x, y, w, h}; }
    friend bool operator==(const MeterFrame&, const MeterFrame&) = default;
};

using MeasureValues = std::span<const MeasureValue>;

/// A visible item of a skin. The runtime owns it and changes its options and frame; the canvas shows it. Main thread.
class MeterRenderer {
public:
    MeterRenderer(std::string name, Options options);
    virtual ~MeterRenderer() = default;
    MeterRenderer(const MeterRenderer&) = delete;
    MeterRenderer& operator=(const MeterRenderer&) = delete;

    const std::string& name() const { return name_; }

    const MeterFrame& frame() const { return frame_; }
    void setFrame(const MeterFrame& frame) { frame_ = frame; }

    const Options& options() const { return options_; }
    /// Grows with every change of an option.
    std::uint64_t optionsRevision() const { return optionsRevision_; }
    void setOption(std::string_view key, std::string_view value);
    /// The option is as if it had never been there.
    void removeOption(std::string_view key);

    /// Draws into a painter whose coordinates are those of the widget. `values` are those of the bound measures, in
    /// binding order.
    virtual void draw(QPainter& painter, MeasureValues values) = 0;
    /// The area in which the meter takes the mouse.
    virtual Rect interactionRect(MeasureValues) { return frame_.rect(); }

    /// Takes in what the next draw will show; true when its pixels may differ from those of the draw before, wherever
    /// the frame is. Asked once a publication, by the one canvas that shows the meter.
    virtual bool updateAppearance(MeasureValues values) = 0;
    /// Where the last `updateAppearance` has changed the pixels of a meter that stayed in its frame; absent when that
    /// is anywhere in the paint rects of before and after.
    virtual std::optional<Rect> changedPart() const { return std::nullopt; }
    /// Holds every pixel that `draw` touches for these values: overhanging glyphs, shadows and strokes included.
    virtual Rect paintRect(MeasureValues values) = 0;
    /// Whether drawing costs no more than copying the pixels, so that a kept picture of it would gain nothing.
    virtual bool isCheapToDraw() const { return false; }

    /// The size that the meter takes: the written one, and for each side that is not above 0 the one that its content
    /// wants. A side that nothing gives stays as it is.
    virtual Size naturalSize(MeasureValues, Size written) { return written; }
    /// Whether content has arrived since the last layout that gives a size to a frame without one.
    virtual bool isWaitingForLayout() const { return false; }
    /// Whether the layout of visualizer bars may place the meter when its options do not.
    virtual bool joinsBarRow() const { return false; }

    /// Whether the meter draws options whose measure references are resolved, rather than its own.
    virtual bool takesResolvedOptions() const { return false; }
    /// All options with the references resolved, after each change of a value that they name.
    virtual void setResolvedOptions(Options) { }

    /// The text as it would be drawn; absent for a meter that shows none.
    virtual std::optional<std::string> displayedText(MeasureValues) { return std::nullopt; }

protected:
    std::optional<std::string_view> option(const CaseKey& key) const { return Ostrel::option(options_, key); }
    /// What was parsed from the options is stale.
    virtual void optionsDidChange() = 0;

private:
    std::string name_;
    MeterFrame frame_;
    Options options_;
    std::uint64_t optionsRevision_ = 0;
};

/// One item of a publication: the meter, shared, and the values it is to show, copied.
struct Drawable {
    std::shared_ptr<MeterRenderer> meter;
    std::vector<MeasureValue> values;
};

} // namespace Ostrel
