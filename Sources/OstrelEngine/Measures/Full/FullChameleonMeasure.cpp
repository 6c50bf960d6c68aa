#include "OstrelEngine/Measures/Full/FullChameleonMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Measures/Full/FolderScan.h"
#include "OstrelPlatform/PictureColors.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

namespace Ostrel {

namespace {

double brightness(const RGBColor& color) {
    return 0.299 * color.red + 0.587 * color.green + 0.114 * color.blue;
}

RGBColor mixed(const RGBColor& a, const RGBColor& b, double share) {
    return {a.red + (b.red - a.red) * share, a.green + (b.green - a.green) * share, a.blue + (b.blue - a.blue) * share};
}

std::string shown(const RGBColor& color, bool isHex) {
    constexpr std::string_view Digits = "0123456789ABCDEF";
    std::string text;
    for (const double channel : {color.red, color.green, color.blue}) {
        const auto byte = static_cast<std::size_t>(std::lround(std::clamp(channel, 0.0, 1.0) * 255));
        if (isHex)
            text += {Digits[byte / 16], Digits[byte % 16]};
        else
            text += (text.empty() ? "" : ",") + formatInteger(static_cast<std::int64_t>(byte));
    }
    return text;
}

} // namespace

FullChameleonMeasure::FullChameleonMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host)
    , registration_(*this, *this) { }

void FullChameleonMeasure::readOptions() {
    const auto parent = trimmed(text("Parent"_key));
    parent_ = parent.starts_with('[') && parent.ends_with(']') ? parent.substr(1, parent.size() - 2) : parent;
    source_ = trimmed(text("Path"_key));
    color_ = upperCased(trimmed(text("Color"_key, "Average")));
    isHex_ = !equalsIgnoringCase(trimmed(text("Format"_key, "Hex")), "DEC");
}

void FullChameleonMeasure::look() {
    auto* pictures = host().platform().pictures;
    const auto* measure = host().measure(
        source_.starts_with('[') && source_.ends_with(']') ? source_.substr(1, source_.size() - 2) : source_);
    const auto written = measure ? measure->value().stringValue : source_;
    if (!pictures || written.empty())
        return;
    const auto path = host().folders().absolutePath(written);
    if (std::exchange(path_, path) != path && !mayRead(host(), path))
        path_.clear();
    // A file that did not change is not decoded again.
    if (const auto mean = path_.empty() ? std::nullopt : pictures->average(path_))
        mean_ = mean;
}

RGBColor FullChameleonMeasure::chosen(const RGBColor& mean) const {
    const RGBColor white{1, 1, 1};
    const RGBColor black{0, 0, 0};
    const bool isDark = brightness(mean) < 0.5;
    if (color_ == "BACKGROUND2")
        return mixed(mean, isDark ? white : black, 0.25);
    if (color_ == "FOREGROUND1")
        return mixed(mean, isDark ? white : black, 0.9);
    if (color_ == "FOREGROUND2")
        return mixed(mean, isDark ? white : black, 0.7);
    return mean;
}

void FullChameleonMeasure::update() {
    if (optionsDidChange())
        readOptions();
    auto* parent = parent_.empty() ? nullptr : ParentMeasures<FullChameleonMeasure>::find(host().measure(parent_));
    if (!parent)
        look();
    const auto mean = parent ? parent->mean_ : mean_;
    publishText(shown(chosen(mean.value_or(RGBColor{1, 1, 1})), isHex_), 0);
}

} // namespace Ostrel
