#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Meters/MeterProtocol.h"

#include <optional>
#include <string_view>

namespace Ostrel {

class RuntimeExpressions;

/// The geometry of the bars of visualizer skins that compute it outside their text, so that nothing else would place
/// them.
struct MonstercatBarLayout {
    double barWidth = 0;
    double barHeight = 0;
    double shadowOffset = 0;
    double stride = 0;

    friend bool operator==(const MonstercatBarLayout&, const MonstercatBarLayout&) = default;
};

MonstercatBarLayout makeMonstercatBarLayout(const Options& variables, const RuntimeExpressions& expressions);
/// Where the layout puts a bar called "MeterBar<n>" or "MeterShadowBar<n>" that has no geometry of its own; absent for
/// every other meter.
std::optional<MeterFrame> fallbackMonstercatBarFrame(const MeterRenderer& meter, const MonstercatBarLayout& layout);
/// Whether the variable of this upper-cased name places the bars.
bool isMonstercatBarVariable(std::string_view upperCasedName);

} // namespace Ostrel
