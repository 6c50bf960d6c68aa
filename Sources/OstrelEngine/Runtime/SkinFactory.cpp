#include "OstrelEngine/Runtime/SkinFactory.h"

#include "OstrelEngine/Runtime/SkinRuntime.h"

#include <utility>

namespace Ostrel {

std::shared_ptr<Skin> makeSkin(SkinConfig config, const Platform& platform, SkinHost& host) {
    return SkinRuntime::create(std::move(config), platform, host);
}

} // namespace Ostrel
