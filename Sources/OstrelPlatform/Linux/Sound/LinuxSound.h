#pragma once

#include "OstrelPlatform/AudioTap.h"

#include <memory>
#include <string>

namespace Ostrel::LinuxSound {

/// Loads the client of the sound server, which need not run yet. Without that client a machine is silent; never null.
/// `moduleFile` is the client's module; empty means the one that was built or installed with this program.
std::unique_ptr<AudioSystem> open(const std::string& moduleFile = {});

} // namespace Ostrel::LinuxSound
