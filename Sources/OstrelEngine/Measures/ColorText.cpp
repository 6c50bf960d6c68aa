#include "OstrelEngine/Measures/ColorText.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelPlatform/RGBColor.h"

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

std::string channelText(double component) {
    return formatInteger(std::lround(std::clamp(component, 0.0, 1.0) * 255));
}

} // namespace

std::string colorText(const RGBColor& color) {
    return channelText(color.red) + "," + channelText(color.green) + "," + channelText(color.blue) + ",255";
}

} // namespace Ostrel
