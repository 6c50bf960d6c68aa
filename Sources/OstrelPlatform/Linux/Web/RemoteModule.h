#pragma once

namespace Ostrel {

class RemoteReader;

/// The one symbol of the module that holds the network client; the caller owns the result.
using MakeRemoteReader = RemoteReader* (*)();
inline constexpr const char* MakeRemoteReaderName = "ostrelMakeRemoteReader";

} // namespace Ostrel
