#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"

#include <memory>
#include <optional>

namespace Ostrel {

/// Rectangles and ellipses.
class ShapeMeter final : public MeterRenderer {
public:
    ShapeMeter(const MeterDefinition& definition, Options options);
    ~ShapeMeter() override;

    /// The union of the shapes that the options describe, relative to the frame's origin; absent when none parses.
    static std::optional<Rect> inferredBounds(const Options& options);

    MeterKind kind() const override { return MeterKind::shape; }
    void draw(QPainter& painter, MeasureValues values) override;
    Rect interactionRect(MeasureValues values) override;
    bool updateAppearance(MeasureValues values) override;
    Rect paintRect(MeasureValues values) override;

    /// Whether DynamicVariables was on when the meter was made.
    bool isDynamic() const;
    /// Options with their measure references replaced; they are drawn in place of the meter's own.
    void setResolvedOptions(Options options);

protected:
    void optionsDidChange() override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Ostrel
