#include "OstrelEngine/Measures/ChameleonPluginMeasure.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/ColorText.h"
#include "OstrelEngine/Measures/MeasureHost.h"
#include "OstrelPlatform/PictureColors.h"
#include "OstrelPlatform/Platform.h"

#include <memory>
#include <string>
#include <string_view>

namespace Ostrel {

ChameleonPluginMeasure::ChameleonPluginMeasure(
    const MeasureDefinition& definition, std::string skinPath, const Platform& platform, MeasureHost& host)
    : BaseMeasure(definition, std::move(skinPath))
    , host_(host)
    , pictures_(platform.pictures) {
    publish(0, "255,255,255,255", true, 0, 0);
}

void ChameleonPluginMeasure::resolveReferences() {
    parentMeasure_ = dynamic_cast<const ChameleonPluginMeasure*>(host_.measure(option("Parent"_key).value_or("")));
}

void ChameleonPluginMeasure::update() {
    if (parentMeasure_) {
        const auto& value = parentMeasure_->value();
        return publish(value.numericValue, value.stringValue, value.preferStringValue, value.minValue, value.maxValue);
    }
    auto source = colorSource();
    if (source.empty() || !pictures_)
        return;
    if (source != source_) {
        path_ = resolvePath(source);
        source_ = std::move(source);
    }
    if (const auto color = pictures_->average(path_))
        publish(0, colorText(*color), true, 0, 0);
}

std::string ChameleonPluginMeasure::colorSource() const {
    const auto text = trimmed(option("Path"_key).value_or(""));
    if (text.size() > 1 && text.starts_with('[') && text.ends_with(']')) {
        if (const auto* measure = host_.measure(trimmed(text.substr(1, text.size() - 2))))
            return measure->value().stringValue;
    }
    return std::string(text);
}

std::string ChameleonPluginMeasure::resolvePath(std::string_view source) const {
    const auto skinDirectory = deletingLastPathComponent(skinPath());
    auto path = normalizeSeparators(replacingFolderVariables(source, skinDirectory));
    return isAbsolutePath(path) ? path : appendingPathComponent(skinDirectory, path);
}

} // namespace Ostrel
