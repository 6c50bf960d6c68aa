#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/ParentMeasures.h"
#include "OstrelPlatform/RGBColor.h"

#include <optional>
#include <string>

namespace Ostrel {

/// Colors that go with a picture: backgrounds near its mean and foregrounds that can be read on them. A parent names
/// the picture, children one color each. The last colors stand while there is no picture.
class FullChameleonMeasure final : public FullMeasure {
public:
    FullChameleonMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

    void update() override;

private:
    void readOptions();
    /// Asks the picture again when another one is named.
    void look();
    RGBColor chosen(const RGBColor& mean) const;

    ParentMeasures<FullChameleonMeasure> registration_;
    std::string parent_;
    std::string source_;
    /// In upper case.
    std::string color_;
    bool isHex_ = true;
    std::string path_;
    std::optional<RGBColor> mean_;
};

} // namespace Ostrel
