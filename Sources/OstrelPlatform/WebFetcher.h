#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {

/// One request by GET. Redirects are answers like any other: whoever asks decides where to go on.
struct WebRequest {
    /// http or https, percent-encoded; a user and password in it become HTTP authentication.
    std::string url = {};
    /// Empty: the fetcher's own.
    std::string userAgent = {};
    /// "Name: value".
    std::vector<std::string> headers = {};
    /// Empty: the desktop's; "none": direct; else host:port.
    std::string proxy = {};
    std::size_t maxBytes = 8U << 20;
    /// Asks the server whether the stored answer still holds, and stores the new one.
    bool mayUseCache = true;
    bool mayStore = true;
    /// Addresses of this machine and of the local net may be reached.
    bool mayReachLocal = false;
    /// Who asks: fetches of one asker are limited together.
    const void* asker = nullptr;
};

struct WebAnswer {
    enum class Outcome {
        /// `status` and `body` hold.
        Answered,
        /// No connection, or it broke; also an answer that is late, or compressed wrongly.
        Failed,
        /// Longer than asked for.
        TooLarge,
        /// The host is in the local net, which the request did not allow.
        LocalAddress,
    };
    Outcome outcome = Outcome::Failed;
    int status = 0;
    std::string body = {};
    /// Absolute; empty for what is no redirect.
    std::string location = {};
    /// For the log.
    std::string error = {};
};

/// A request under way; destroying it drops the answer. Main thread.
class WebFetch {
public:
    virtual ~WebFetch() = default;
};

/// Fetches pages off the main thread, with one pool of connections: at most 4 at a time for an asker and 2 for a host,
/// a second between two requests of a URL, 20 s to connect and 60 s in all; certificates are always checked. Main
/// thread.
class WebFetcher {
public:
    virtual ~WebFetcher() = default;
    /// `onAnswer` runs once on the main thread, never at once.
    virtual std::unique_ptr<WebFetch> fetch(WebRequest request, std::function<void(WebAnswer)> onAnswer) = 0;
};

} // namespace Ostrel
