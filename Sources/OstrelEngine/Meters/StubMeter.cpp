#include "OstrelEngine/Meters/StubMeter.h"

#include "OstrelEngine/Meters/Painting.h"
#include "OstrelEngine/Meters/Text/FontLibrary.h"
#include "OstrelEngine/Meters/Text/SetText.h"
#include "OstrelEngine/Meters/Text/TextPainter.h"

#include <QPainter>
#include <QPen>

#include <memory>
#include <optional>

namespace Ostrel {

namespace {

constexpr Color MarkColor{1, 0, 0, 0.5};

void drawDashedBox(QPainter& painter, const Rect& rect) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, true);
    QPen pen(toQColor(MarkColor), 1, Qt::CustomDashLine, Qt::FlatCap, Qt::MiterJoin);
    pen.setDashPattern({4, 4});
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(toQRectF(rect));
    painter.restore();
}

} // namespace

/// The question mark, set once.
struct StubMeter::Mark {
    Mark() {
        setting.font.request.name = "Helvetica";
        setting.font.typeface = FontLibrary::shared().typeface(setting.font.request);
        setting.size = 10;
        look.color = MarkColor;
        SetText text;
        text.setText("?");
        layout = text.inLines(setting, std::nullopt);
    }

    Rect rectIn(const Rect& frame) const {
        const double baseline = frame.y + frame.height / 2 + 4;
        const double ascent = layout.lines.empty() ? 0 : layout.lines.front().ascent;
        return {frame.x + frame.width / 2 - 3, baseline - ascent, layout.width(), layout.height()};
    }

    TextSetting setting;
    TextAppearance look;
    TextLayout layout;
};

StubMeter::StubMeter(const MeterDefinition& definition, Options options)
    : MeterRenderer(definition.sectionName, std::move(options)) { }

StubMeter::~StubMeter() = default;

void StubMeter::draw(QPainter& painter, MeasureValues) {
    const Rect rect = frame().rect();
    if (rect.isEmpty())
        return;
    drawDashedBox(painter, rect);
    TextPainter::draw(painter, mark().layout, mark().setting.size, mark().rectIn(rect), mark().look);
}

Rect StubMeter::paintRect(MeasureValues) {
    const Rect rect = frame().rect();
    if (rect.isEmpty())
        return {};
    const Rect text = TextPainter::paintRect(mark().layout, mark().setting.size, mark().rectIn(rect), mark().look);
    return rect.expanded(1).united(text);
}

const StubMeter::Mark& StubMeter::mark() {
    if (!mark_)
        mark_ = std::make_unique<Mark>();
    return *mark_;
}

} // namespace Ostrel
