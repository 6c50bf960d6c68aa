#pragma once

#include "OstrelEngine/Meters/Full/FullMeter.h"

#include <cstdint>
#include <memory>

class QTransform;

namespace Ostrel {

/// Base of the meters that show a history: each update stores a sample per graph, one pixel along the time axis. What
/// has been drawn is kept in device pixels as a ring, so an update draws the newest columns alone; where the canvas is
/// scaled by a fraction or the meter is turned, all columns are drawn. At most 8192
/// columns are shown, and fewer when there are many graphs.
class GraphMeter : public FullMeter {
public:
    GraphMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context);
    ~GraphMeter() override;

    bool isCheapToDraw() const override { return true; }

protected:
    struct Sample {
        double value = 0;
        /// Of the measure's range when it was taken, 0 to 1.
        double share = 0;
    };
    /// Samples are numbered by the updates that took them.
    using Index = std::int64_t;

    /// What is common to the graphs, and how many measures they store, at most 64. With `margin` columns before and
    /// behind it a column looks as it does among all.
    void readGraphOptions(int graphs, int margin);
    /// The columns that are drawn look different.
    void graphDidChange();
    /// The box in which values and times lie: as many points as there are columns, and the points of a full column.
    double columnCount() const;
    double columnHeight() const;
    bool isAutoScaled() const;
    /// From all columns, as `drawColumns` counts them, to points from the content's top left.
    QTransform toBox() const;
    /// Of the samples that are shown; 0 without any.
    double largestValue() const;
    /// Null where nothing is stored.
    const Sample* sample(int graph, Index index) const;

    void takeValues(MeasureValues values) override;
    /// Called after each update with the new sample stored.
    virtual void prepareColumns(MeasureValues values) = 0;
    /// Draws the columns `first` to `end`: column i from x = i − first on, one point wide, values from y = 0 upward in
    /// growing y. What lies outside of the columns is cut off. The clip and the transformation are put back after it.
    virtual void drawColumns(QPainter& painter, Index first, Index end) const = 0;
    /// False: the columns do not keep their look while they move.
    virtual bool columnsMoveUnchanged() const { return true; }

    Size contentSize(std::optional<double> width, std::optional<double> height) const override;
    void drawContent(QPainter& painter) override;
    bool drawsUnderAnyTransform() const override { return true; }

private:
    struct State;

    bool drawRing(QPainter& painter, double cornerX, double cornerY);
    void drawIntoRing(Index first, Index end);

    std::unique_ptr<State> state_;
};

} // namespace Ostrel
