#pragma once

#include "OstrelPlatform/RemoteReader.h"

#include <optional>
#include <string>

namespace Ostrel {

/// Qt's network client. A read runs in a thread of its own with an event loop of its own, so that nothing of the main
/// loop fires while the caller waits.
class QtRemoteReader final : public RemoteReader {
public:
    struct Limits {
        /// For the whole answer, redirects included.
        int milliseconds = 5000;
        long long bytes = 16ll << 20;
        int redirects = 5;
    };

    explicit QtRemoteReader(Limits limits);

    std::optional<std::string> read(const std::string& url) override;

private:
    Limits limits_;
};

} // namespace Ostrel
