#pragma once

#include "OstrelEngine/Meters/MeterProtocol.h"
#include "OstrelEngine/Runtime/DynamicOptions.h"
#include "OstrelEngine/Runtime/LayoutResolver.h"
#include "OstrelEngine/Runtime/MeterBindings.h"

#include <vector>

namespace Ostrel {

class Clock;
class MeterTable;
class SkinHost;

/// Decides when there is something to show and hands it over: at most one list per 1/60 s, and none while nothing
/// changed, unless it is forced.
class Publication {
public:
    enum class Force { No, Yes };

    /// All must outlive this.
    Publication(const Clock& clock, SkinHost& host, const MeterTable& meters, MeterBindings& bindings,
        DynamicOptions& dynamicOptions, LayoutResolver& layout);

    /// A value or a visibility changed, so that the next call has something to show.
    void markChanged() { changedSinceLastPublish_ = true; }
    /// Forgets when the last list went out, as for a skin that has just started.
    void restart() { lastPublishTime_ = 0; }

    /// Lays out first when that is due.
    void publishDrawables(Force force);

private:
    void collectDrawables();

    const Clock& clock_;
    SkinHost& host_;
    const MeterTable& meters_;
    MeterBindings& bindings_;
    DynamicOptions& dynamicOptions_;
    LayoutResolver& layout_;
    /// Kept between publications, so that one of the same meters allocates nothing.
    std::vector<Drawable> drawables_;
    double lastPublishTime_ = 0;
    bool changedSinceLastPublish_ = true;
};

} // namespace Ostrel
