#include "OstrelEngine/Measures/DiskMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/HostStatistics.h"

#include <string>
#include <string_view>
#include <utility>

namespace Ostrel {

namespace {

/// "C:" and "D:\" are how skins name drives; here they are all the root.
bool isDriveLetter(std::string_view drive) {
    std::size_t characters = 0;
    for (std::size_t i = 0; i < drive.size() && characters < 4; i += decodeCharacter(drive, i).length)
        ++characters;
    return characters < 4 && drive.find(':') != std::string_view::npos;
}

std::string watchedPath(std::string_view drive) {
    return isDriveLetter(drive) ? "/" : std::string(drive);
}

} // namespace

DiskMeasure::DiskMeasure(const MeasureDefinition& definition, std::string skinPath, HostStatistics& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host)
    , drivePath_(watchedPath(option("Drive"_key).value_or("/")))
    , isTotal_(option("Total"_key) == "1")
    , isInverted_(option("InvertMeasure"_key) == "1") { }

void DiskMeasure::update() {
    const auto figures = host_.fileSystem(drivePath_);
    if (!figures)
        return;
    const double inPart = isInverted_ ? figures->total - figures->free : figures->free;
    publish(isTotal_ ? figures->total : inPart, "", false, 0, figures->total);
}

} // namespace Ostrel
