#pragma once

#include "OstrelPlatform/RemoteReader.h"

#include <memory>
#include <optional>
#include <string>

namespace Ostrel {

/// Loads the network client at the first read. Its libraries cost a resident process memory and start-up time that few
/// skins make use of.
class LazyRemoteReader final : public RemoteReader {
public:
    /// `moduleFile` is the client's module; empty means the one that was built or installed with this program.
    explicit LazyRemoteReader(std::string moduleFile = {});
    ~LazyRemoteReader() override;

    std::optional<std::string> read(const std::string& url) override;

private:
    std::string moduleFile_;
    std::unique_ptr<RemoteReader> reader_;
    bool tried_ = false;
};

} // namespace Ostrel
