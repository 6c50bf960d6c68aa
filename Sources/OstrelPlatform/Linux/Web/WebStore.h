#pragma once

#include "OstrelPlatform/WebFetcher.h"

#include <cstddef>
#include <list>
#include <string>
#include <vector>

namespace Ostrel {

/// Answers that servers can confirm, the last used ones up to a number of bytes. One thread at a time.
class WebStore {
public:
    struct Entry {
        std::string body;
        /// "ETag" and "Last-Modified"; without either the answer is not kept.
        std::string tag;
        std::string date;
    };

    explicit WebStore(std::size_t bytes)
        : room_(bytes) { }

    /// Headers that ask whether the stored answer holds; none without one.
    std::vector<std::string> conditions(const WebRequest& request) const;
    void keep(const WebRequest& request, const Entry& entry);
    /// Of a confirmed answer.
    std::string body(const WebRequest& request);

private:
    struct Stored {
        std::string key;
        Entry entry;
    };
    static std::string key(const WebRequest& request);
    void drop(const std::string& key);

    std::size_t room_;
    std::size_t used_ = 0;
    /// The last used first.
    std::list<Stored> stored_;
};

} // namespace Ostrel
