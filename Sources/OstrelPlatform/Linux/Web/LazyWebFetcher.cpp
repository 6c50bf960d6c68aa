#include "OstrelPlatform/Linux/Web/LazyWebFetcher.h"

#include "OstrelPlatform/Linux/ModuleLoader.h"
#include "OstrelPlatform/MainQueue.h"

#include <utility>

namespace Ostrel {

namespace {

std::unique_ptr<WebFetcher> load(const std::string& file, MainQueue& queue) {
    const auto make = ModuleLoader::function<WebFetcher* (*)(MainQueue&)>(file, "ostrelMakeWebFetcher");
    return std::unique_ptr<WebFetcher>(make ? make(queue) : nullptr);
}

} // namespace

LazyWebFetcher::LazyWebFetcher(MainQueue& queue, std::string moduleFile)
    : queue_(queue)
    , moduleFile_(std::move(moduleFile)) { }

LazyWebFetcher::~LazyWebFetcher() = default;

std::unique_ptr<WebFetch> LazyWebFetcher::fetch(WebRequest request, std::function<void(WebAnswer)> onAnswer) {
    if (!std::exchange(tried_, true))
        fetcher_ = load(moduleFile_.empty() ? ModuleLoader::installedFile(OSTREL_WEB_MODULE) : moduleFile_, queue_);
    if (fetcher_)
        return fetcher_->fetch(std::move(request), std::move(onAnswer));
    queue_.post([onAnswer = std::move(onAnswer)] { onAnswer({.error = "the network client is missing"}); });
    return nullptr;
}

} // namespace Ostrel
