#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"

#include <memory>
#include <optional>
#include <string>

namespace Ostrel {

/// Text from a template and the bound values.
class StringMeter final : public MeterRenderer {
public:
    /// The fonts that its skin brings along are registered by then.
    StringMeter(const MeterDefinition& definition, Options options);
    ~StringMeter() override;

    void draw(QPainter& painter, MeasureValues values) override;
    /// Where the text stands: the frame's x is an anchor that depends on StringAlign.
    Rect interactionRect(MeasureValues values) override;
    bool updateAppearance(MeasureValues values) override;
    Rect paintRect(MeasureValues values) override;

    /// The size that the text of these values wants, padding included, on as many lines as it has breaks.
    Size naturalSize(MeasureValues values, Size written) override;
    /// Formatted, cased, line breaks resolved.
    std::optional<std::string> displayedText(MeasureValues values) override;

protected:
    void optionsDidChange() override;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Ostrel
