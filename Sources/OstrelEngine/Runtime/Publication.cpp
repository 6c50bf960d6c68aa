#include "OstrelEngine/Runtime/Publication.h"

#include "OstrelEngine/Runtime/MeterTable.h"
#include "OstrelEngine/Runtime/SkinHost.h"
#include "OstrelPlatform/Clock.h"

#include <utility>

namespace Ostrel {

namespace {

constexpr double MinimumPublishInterval = 1.0 / 60.0;

} // namespace

Publication::Publication(const Clock& clock, SkinHost& host, const MeterTable& meters, MeterBindings& bindings,
    DynamicOptions& dynamicOptions, LayoutResolver& layout)
    : clock_(clock)
    , host_(host)
    , meters_(meters)
    , bindings_(bindings)
    , dynamicOptions_(dynamicOptions)
    , layout_(layout) { }

void Publication::publishDrawables(Force force) {
    const double now = clock_.uptimeSeconds();
    if (force == Force::No) {
        // What is held back here stays marked, and the next tick catches up.
        if (now - lastPublishTime_ < MinimumPublishInterval)
            return;
        if (!changedSinceLastPublish_ && !layout_.needsResolution())
            return;
    }
    if (layout_.needsResolution() || layout_.hasImageWaitingForItsSize())
        layout_.resolveLayout();
    collectDrawables();
    // Taken out meanwhile: what is shown may act on the skin and so publish again.
    auto drawables = std::exchange(drawables_, {});
    host_.skinDidPublish(drawables);
    drawables_ = std::move(drawables);
    lastPublishTime_ = now;
    changedSinceLastPublish_ = false;
}

void Publication::collectDrawables() {
    drawables_.reserve(meters_.count());
    std::size_t count = 0;
    for (std::size_t i = 0; i < meters_.count(); ++i) {
        if (!meters_.isVisible(i))
            continue;
        dynamicOptions_.resolveDynamicOptions(i);
        const auto values = bindings_.values(i);
        if (count == drawables_.size())
            drawables_.emplace_back();
        auto& drawable = drawables_[count++];
        if (drawable.meter != meters_.shared(i))
            drawable.meter = meters_.shared(i);
        drawable.values.assign(values.begin(), values.end());
    }
    drawables_.resize(count);
}

} // namespace Ostrel
