#include "OstrelPlatform/Linux/Web/WebStore.h"

#include <algorithm>
#include <iterator>

namespace Ostrel {

/// Servers answer by what they are asked with, too.
std::string WebStore::key(const WebRequest& request) {
    std::string key = request.url + '\n' + request.userAgent;
    for (const auto& header : request.headers)
        key += '\n' + header;
    return key;
}

std::vector<std::string> WebStore::conditions(const WebRequest& request) const {
    const auto found = std::ranges::find(stored_, key(request), &Stored::key);
    std::vector<std::string> headers;
    if (found == stored_.end())
        return headers;
    if (!found->entry.tag.empty())
        headers.push_back("If-None-Match: " + found->entry.tag);
    if (!found->entry.date.empty())
        headers.push_back("If-Modified-Since: " + found->entry.date);
    return headers;
}

void WebStore::drop(const std::string& key) {
    const auto found = std::ranges::find(stored_, key, &Stored::key);
    if (found == stored_.end())
        return;
    used_ -= found->entry.body.size();
    stored_.erase(found);
}

void WebStore::keep(const WebRequest& request, const Entry& entry) {
    const auto name = key(request);
    drop(name);
    // One page must not push out all the others.
    if ((entry.tag.empty() && entry.date.empty()) || entry.body.size() > room_ / 2)
        return;
    stored_.push_front({name, entry});
    used_ += entry.body.size();
    while (used_ > room_)
        drop(std::string(stored_.back().key));
}

std::string WebStore::body(const WebRequest& request) {
    const auto found = std::ranges::find(stored_, key(request), &Stored::key);
    if (found == stored_.end())
        return {};
    stored_.splice(stored_.begin(), stored_, found);
    return stored_.front().entry.body;
}

} // namespace Ostrel
