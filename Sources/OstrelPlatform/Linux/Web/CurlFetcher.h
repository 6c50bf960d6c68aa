#pragma once

#include "OstrelPlatform/WebFetcher.h"

#include <functional>
#include <memory>

namespace Ostrel {

class MainQueue;

/// libcurl in a thread of its own, which exists from the first request on, with one pool of connections and a bounded
/// store of answers for conditional requests (RFC 9110, section 13).
class CurlFetcher final : public WebFetcher {
public:
    struct Limits {
        double connectSeconds = 20;
        double totalSeconds = 60;
        /// Between two requests of one URL.
        double pauseSeconds = 1;
        int perAsker = 4;
        int perHost = 2;
        /// Bytes of stored answers.
        std::size_t store = 16U << 20;
    };

    /// `queue` outlives the fetcher.
    CurlFetcher(MainQueue& queue, Limits limits);
    ~CurlFetcher() override;

    std::unique_ptr<WebFetch> fetch(WebRequest request, std::function<void(WebAnswer)> onAnswer) override;

private:
    class Worker;
    class Handle;

    MainQueue& queue_;
    Limits limits_;
    std::shared_ptr<Worker> worker_;
};

} // namespace Ostrel
