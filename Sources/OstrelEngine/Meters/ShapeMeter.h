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

    void draw(QPainter& painter, MeasureValues values) override;
    Rect interactionRect(MeasureValues values) override;
    bool updateAppearance(MeasureValues values) override;
    Rect paintRect(MeasureValues values) override;

    /// From the frame's origin to the far edges of the shapes that the written options describe.
    Size naturalSize(MeasureValues values, Size written) override;
    /// With DynamicVariables.
    bool takesResolvedOptions() const override;
    void setResolvedOptions(Options options) override;

protected:
    void optionsDidChange() override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Ostrel
