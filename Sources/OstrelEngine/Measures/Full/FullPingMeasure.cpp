#include "OstrelEngine/Measures/Full/FullPingMeasure.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/NetworkProbe.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Ostrel {

void FullPingMeasure::update() {
    if (optionsDidChange())
        rate_ = std::max(1, integer("UpdateRate"_key, 32));
    if (updates_++ % rate_ == 0 && !isAsking_)
        ask();
    publishNumber(shown_);
}

void FullPingMeasure::ask() {
    auto* probe = host().platform().networkProbe;
    const std::string address(trimmed(text("DestAddress"_key)));
    if (!probe || address.empty() || !host().isAllowed(Permission::Web, address))
        return;
    isAsking_ = true;
    probe->ping(
        address, number("Timeout"_key, 30000), [this, life = std::weak_ptr(life_)](std::optional<double> milliseconds) {
            if (!life.expired())
                takeAnswer(milliseconds);
        });
}

void FullPingMeasure::takeAnswer(std::optional<double> milliseconds) {
    isAsking_ = false;
    shown_ = milliseconds.value_or(number("TimeoutValue"_key, 30000));
    host().valueDidArrive(*this);
    if (const auto action = option("FinishAction"_key); action && !action->empty())
        host().runAction(*this, *action);
}

} // namespace Ostrel
