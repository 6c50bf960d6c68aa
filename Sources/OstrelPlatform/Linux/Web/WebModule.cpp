#include "OstrelPlatform/Linux/Web/CurlFetcher.h"

/// The one symbol of the module that holds the fetcher; the caller owns the result.
extern "C" __attribute__((visibility("default"))) Ostrel::WebFetcher* ostrelMakeWebFetcher(Ostrel::MainQueue& queue) {
    return new Ostrel::CurlFetcher(queue, {});
}
