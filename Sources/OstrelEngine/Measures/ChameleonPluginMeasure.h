#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <memory>
#include <string>
#include <string_view>

namespace Ostrel {

class MeasureHost;
class PictureColors;

/// The mean color of a picture, which may be the cover that another measure names. A measure with a `Parent` shows what
/// that one shows. White until there is a picture; the last color stands while there is none.
class ChameleonPluginMeasure final : public BaseMeasure {
public:
    ChameleonPluginMeasure(
        const MeasureDefinition& definition, std::string skinPath, const Platform& platform, MeasureHost& host);

    void update() override;
    void resolveReferences() override;

private:
    /// As the skin names the picture, a measure's text taken for its name; empty when there is none.
    std::string colorSource() const;
    std::string resolvePath(std::string_view source) const;

    MeasureHost& host_;
    /// Null where no picture can be decoded.
    PictureColors* pictures_;
    const ChameleonPluginMeasure* parentMeasure_ = nullptr;
    /// What `path_` was resolved from: that asks the disk.
    std::string source_;
    std::string path_;
};

} // namespace Ostrel
