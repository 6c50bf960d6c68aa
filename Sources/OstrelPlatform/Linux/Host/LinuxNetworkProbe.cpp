#include "OstrelPlatform/Linux/Host/LinuxNetworkProbe.h"

#include "OstrelPlatform/MainQueue.h"

#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/ip_icmp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace Ostrel {

struct LinuxNetworkProbe::Shared {
    std::mutex mutex;
    /// Null when the probe has ended.
    MainQueue* queue = nullptr;
    int running = 0;
};

namespace {

using Clock = std::chrono::steady_clock;

constexpr int MostQuestions = 8;
constexpr double LongestTimeoutMs = 60000;

double millisecondsSince(Clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

/// A socket that closes itself.
class Socket {
public:
    Socket(int family, int type, int protocol)
        : descriptor_(socket(family, type | SOCK_CLOEXEC | SOCK_NONBLOCK, protocol)) { }
    ~Socket() {
        if (descriptor_ >= 0)
            close(descriptor_);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    int descriptor() const { return descriptor_; }
    bool waitFor(short events, Clock::time_point deadline) const {
        for (;;) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
            if (left <= 0)
                return false;
            pollfd watched{descriptor_, events, 0};
            const int count = poll(&watched, 1, static_cast<int>(left));
            if (count > 0)
                return true;
            if (count == 0 || errno != EINTR)
                return false;
        }
    }

private:
    int descriptor_;
};

std::optional<double> echo(const addrinfo& target, Clock::time_point deadline) {
    const bool isIPv4 = target.ai_family == AF_INET;
    const Socket socket(target.ai_family, SOCK_DGRAM, isIPv4 ? int{IPPROTO_ICMP} : int{IPPROTO_ICMPV6});
    if (socket.descriptor() < 0)
        return std::nullopt;
    // Type and code; the kernel fills in identifier and checksum.
    constexpr unsigned char EchoRequest4 = 8;
    constexpr unsigned char EchoRequest6 = 128;
    const std::array<unsigned char, 16> request{isIPv4 ? EchoRequest4 : EchoRequest6};
    const auto begin = Clock::now();
    if (sendto(socket.descriptor(), request.data(), request.size(), 0, target.ai_addr, target.ai_addrlen) < 0)
        return std::nullopt;
    if (!socket.waitFor(POLLIN, deadline))
        return std::nullopt;
    return millisecondsSince(begin);
}

std::optional<double> connection(const addrinfo& target, std::uint16_t port, Clock::time_point deadline) {
    sockaddr_storage address{};
    std::copy_n(reinterpret_cast<const char*>(target.ai_addr), target.ai_addrlen, reinterpret_cast<char*>(&address));
    if (target.ai_family == AF_INET)
        reinterpret_cast<sockaddr_in*>(&address)->sin_port = htons(port);
    else
        reinterpret_cast<sockaddr_in6*>(&address)->sin6_port = htons(port);
    const Socket socket(target.ai_family, SOCK_STREAM, 0);
    if (socket.descriptor() < 0)
        return std::nullopt;
    const auto begin = Clock::now();
    if (connect(socket.descriptor(), reinterpret_cast<const sockaddr*>(&address), target.ai_addrlen) != 0) {
        if (errno != EINPROGRESS || !socket.waitFor(POLLOUT, deadline))
            return std::nullopt;
        int error = 0;
        socklen_t size = sizeof(error);
        getsockopt(socket.descriptor(), SOL_SOCKET, SO_ERROR, &error, &size);
        // A refusal is an answer too.
        if (error != 0 && error != ECONNREFUSED)
            return std::nullopt;
    }
    return millisecondsSince(begin);
}

std::optional<double> measure(const std::string& address, double timeoutMs) {
    const auto deadline = Clock::now()
        + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double, std::milli>(timeoutMs));
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(address.c_str(), nullptr, &hints, &found) != 0 || !found)
        return std::nullopt;
    auto result = echo(*found, deadline);
    for (const std::uint16_t port : {std::uint16_t{443}, std::uint16_t{80}}) {
        if (!result)
            result = connection(*found, port, deadline);
    }
    freeaddrinfo(found);
    return result;
}

} // namespace

LinuxNetworkProbe::LinuxNetworkProbe(MainQueue& mainQueue)
    : shared_(std::make_shared<Shared>()) {
    shared_->queue = &mainQueue;
}

LinuxNetworkProbe::~LinuxNetworkProbe() {
    const std::lock_guard lock(shared_->mutex);
    shared_->queue = nullptr;
}

void LinuxNetworkProbe::ping(
    const std::string& address, double timeoutMs, std::function<void(std::optional<double>)> done) {
    const double timeout = std::clamp(timeoutMs, 1.0, LongestTimeoutMs);
    const std::lock_guard lock(shared_->mutex);
    if (shared_->running >= MostQuestions) {
        shared_->queue->post([done = std::move(done)] { done(std::nullopt); });
        return;
    }
    ++shared_->running;
    try {
        std::thread([shared = shared_, address, timeout, done = std::move(done)] {
            const auto result = measure(address, timeout);
            const std::lock_guard guard(shared->mutex);
            --shared->running;
            if (shared->queue)
                shared->queue->post([done, result] { done(result); });
        }).detach();
    } catch (const std::system_error&) {
        --shared_->running;
    }
}

} // namespace Ostrel
