#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"

#include <memory>

namespace Ostrel {

/// Marks the place of a meter of a kind that is not drawn here: a dashed box with a question mark.
class StubMeter final : public MeterRenderer {
public:
    StubMeter(const MeterDefinition& definition, Options options);
    ~StubMeter() override;

    void draw(QPainter& painter, MeasureValues values) override;
    bool updateAppearance(MeasureValues) override { return false; }
    Rect paintRect(MeasureValues values) override;
    bool isCheapToDraw() const override { return true; }

protected:
    void optionsDidChange() override { }

private:
    struct Mark;
    const Mark& mark();

    std::unique_ptr<Mark> mark_;
};

} // namespace Ostrel
