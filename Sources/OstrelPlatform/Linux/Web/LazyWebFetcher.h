#pragma once

#include "OstrelPlatform/WebFetcher.h"

#include <functional>
#include <memory>
#include <string>

namespace Ostrel {

class MainQueue;

/// Loads the fetcher at the first request.
class LazyWebFetcher final : public WebFetcher {
public:
    /// `queue` outlives the fetcher. `moduleFile` is its module; empty means the one that was built or installed with
    /// this program.
    explicit LazyWebFetcher(MainQueue& queue, std::string moduleFile = {});
    ~LazyWebFetcher() override;

    std::unique_ptr<WebFetch> fetch(WebRequest request, std::function<void(WebAnswer)> onAnswer) override;

private:
    MainQueue& queue_;
    std::string moduleFile_;
    std::unique_ptr<WebFetcher> fetcher_;
    bool tried_ = false;
};

} // namespace Ostrel
