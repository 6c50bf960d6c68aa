#include "OstrelEngine/Meters/Full/FullMeterFactory.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/Full/FullBackground.h"
#include "OstrelEngine/Meters/Full/FullBarMeter.h"
#include "OstrelEngine/Meters/Full/FullBitmapMeter.h"
#include "OstrelEngine/Meters/Full/FullButtonMeter.h"
#include "OstrelEngine/Meters/Full/FullImageMeter.h"
#include "OstrelEngine/Meters/Full/FullRotatorMeter.h"
#include "OstrelEngine/Meters/Full/FullShapeMeter.h"
#include "OstrelEngine/Meters/Full/FullStringMeter.h"
#include "OstrelEngine/Meters/Full/HistogramMeter.h"
#include "OstrelEngine/Meters/Full/LineMeter.h"
#include "OstrelEngine/Meters/Full/RoundlineMeter.h"

#include <string_view>
#include <utility>

namespace Ostrel::FullMeterFactory {

namespace {

class UnknownMeter final : public FullMeter {
public:
    using FullMeter::FullMeter;

protected:
    void readOptions() override { }
    void takeValues(MeasureValues) override { }
    Size contentSize(std::optional<double>, std::optional<double>) const override { return {}; }
    void drawContent(QPainter&) override { }
    bool isDrawn() const override { return false; }
};

template <typename Meter>
std::shared_ptr<FullMeter> make(const MeterDefinition& definition, Options options, const FullMeterContext& context) {
    return std::make_shared<Meter>(definition, std::move(options), context);
}

struct Row {
    std::string_view type;
    std::shared_ptr<FullMeter> (*make)(const MeterDefinition&, Options, const FullMeterContext&);
};

constexpr Row Rows[] = {
    {"Bar", make<FullBarMeter>},
    {"Bitmap", make<FullBitmapMeter>},
    {"Button", make<FullButtonMeter>},
    {"Histogram", make<HistogramMeter>},
    {"Image", make<FullImageMeter>},
    {"Line", make<LineMeter>},
    {"Rotator", make<FullRotatorMeter>},
    {"Roundline", make<RoundlineMeter>},
    {"Shape", make<FullShapeMeter>},
    {"String", make<FullStringMeter>},
};

} // namespace

std::shared_ptr<FullMeter> create(const MeterDefinition& definition, Options options, const FullMeterContext& context) {
    for (const auto& row : Rows)
        if (equalsIgnoringCase(row.type, definition.meterType))
            return row.make(definition, std::move(options), context);
    return make<UnknownMeter>(definition, std::move(options), context);
}

std::shared_ptr<FullMeter> createBackground(const Options& skinSection, const FullMeterContext& context) {
    return FullBackground::create(skinSection, context);
}

} // namespace Ostrel::FullMeterFactory
