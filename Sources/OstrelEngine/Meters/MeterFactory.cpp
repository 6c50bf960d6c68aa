#include "OstrelEngine/Meters/MeterFactory.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/BarMeter.h"
#include "OstrelEngine/Meters/ImageMeter.h"
#include "OstrelEngine/Meters/ShapeMeter.h"
#include "OstrelEngine/Meters/StringMeter.h"
#include "OstrelEngine/Meters/StubMeter.h"

namespace Ostrel::MeterFactory {

std::shared_ptr<MeterRenderer> create(
    const MeterDefinition& definition, Options options, const std::string& skinPath, const Platform& platform) {
    const std::string type = upperCased(definition.meterType);
    if (type == "STRING")
        return std::make_shared<StringMeter>(definition, std::move(options));
    if (type == "BAR")
        return std::make_shared<BarMeter>(definition, std::move(options));
    if (type == "IMAGE" || type == "BUTTON")
        return std::make_shared<ImageMeter>(definition, std::move(options), skinPath, platform);
    if (type == "SHAPE")
        return std::make_shared<ShapeMeter>(definition, std::move(options));
    return std::make_shared<StubMeter>(definition, std::move(options));
}

} // namespace Ostrel::MeterFactory
