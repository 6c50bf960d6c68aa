#include "OstrelEngine/Measures/Full/FullDiskMeasure.h"

#include "OstrelPlatform/HostDetails.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"

#include <string_view>

namespace Ostrel {

namespace {

struct TypeName {
    std::string_view text;
    double number;
};

/// The numbers are those that skins compare with; there is no 2.
TypeName typeName(Volume::Kind kind) {
    switch (kind) {
    case Volume::Kind::Missing:
        return {"Removed", 1};
    case Volume::Kind::Removable:
        return {"Removable", 3};
    case Volume::Kind::Fixed:
        return {"Fixed", 4};
    case Volume::Kind::Network:
        return {"Network", 5};
    case Volume::Kind::Optical:
        return {"CDRom", 6};
    case Volume::Kind::Memory:
        return {"Ram", 7};
    }
    return {"Error", 0};
}

} // namespace

void FullDiskMeasure::update() {
    if (optionsDidChange()) {
        drive_ = text("Drive"_key, "C:");
        showsTotal_ = isOn("Total"_key, false);
        showsLabel_ = isOn("Label"_key, false);
        showsType_ = isOn("Type"_key, false);
        respectsQuota_ = isOn("DiskQuota"_key, true);
        ignoresRemovable_ = isOn("IgnoreRemovable"_key, true);
    }
    auto* details = host().platform().hostStatistics.details();
    auto volume = details ? details->volume(drive_) : Volume();
    if (showsType_) {
        const auto [name, number] = typeName(volume.kind);
        return publishText(name, number, 0, 7);
    }
    const bool isHidden
        = (volume.kind == Volume::Kind::Removable && ignoresRemovable_) || volume.kind == Volume::Kind::Optical;
    if (isHidden)
        volume.total = volume.free = volume.available = 0;
    const double free = respectsQuota_ ? volume.available : volume.free;
    const double number = showsTotal_ ? volume.total : free;
    if (showsLabel_)
        return publishText(volume.label, number, 0, volume.total);
    publishNumber(number, 0, volume.total);
}

} // namespace Ostrel
