#pragma once

#include "OstrelPlatform/NetworkProbe.h"

#include <memory>

namespace Ostrel {

class MainQueue;

/// Sends an echo request (RFC 792, RFC 4443) where the user may open such a socket, else times a connection to port 443
/// or 80. Each question has a thread of its own, which may outlive the probe while a name server keeps it waiting; at
/// most 8 run at once, and a question beyond that is answered as unreachable.
class LinuxNetworkProbe final : public NetworkProbe {
public:
    explicit LinuxNetworkProbe(MainQueue& mainQueue);
    ~LinuxNetworkProbe() override;

    void ping(const std::string& address, double timeoutMs, std::function<void(std::optional<double>)> done) override;

private:
    struct Shared;
    std::shared_ptr<Shared> shared_;
};

} // namespace Ostrel
