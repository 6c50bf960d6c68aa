#pragma once

#include "OstrelCore/Documents/SkinModel.h"

#include <memory>

namespace Ostrel {

class Skin;
class SkinHost;
struct Platform;

/// The running skin of a loaded file; nothing has ticked yet. Platform and host outlive it.
std::shared_ptr<Skin> makeSkin(SkinConfig config, const Platform& platform, SkinHost& host);

} // namespace Ostrel
