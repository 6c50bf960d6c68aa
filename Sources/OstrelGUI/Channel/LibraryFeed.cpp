#include "OstrelGUI/Channel/LibraryFeed.h"

#include "OstrelGUI/Channel/LibraryMessages.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <unordered_map>

namespace Ostrel {

namespace {

bool differBesidesPicture(const WidgetLibraryItem& a, const WidgetLibraryItem& b) {
    return a.isRendered != b.isRendered || a.isRunning != b.isRunning || a.failure != b.failure
        || a.displayName != b.displayName || a.packageName != b.packageName || a.relativePath != b.relativePath;
}

} // namespace

std::optional<nlohmann::json> LibraryFeed::list(const std::vector<WidgetLibraryItem>& items) {
    firstToCheck_ = 0;
    if (hasTold_ && hasSamePaths(items))
        return changed(items);
    hasTold_ = true;
    return all(items);
}

bool LibraryFeed::hasSamePaths(const std::vector<WidgetLibraryItem>& items) const {
    return std::ranges::equal(items, told_, {}, &WidgetLibraryItem::path, &WidgetLibraryItem::path);
}

nlohmann::json LibraryFeed::all(const std::vector<WidgetLibraryItem>& items) {
    // The window keeps the pictures of the paths that stay.
    std::unordered_map<std::string, std::shared_ptr<const std::string>> pictures;
    for (auto& item : told_)
        pictures.emplace(std::move(item.path), std::move(item.snapshotData));
    told_ = items;
    auto encoded = nlohmann::json::array();
    for (auto& item : told_) {
        encoded.push_back(LibraryMessages::encode(item));
        const auto known = pictures.find(item.path);
        item.snapshotData = known == pictures.end() ? nullptr : known->second;
    }
    return {{"type", "items"}, {"items", std::move(encoded)}};
}

std::optional<nlohmann::json> LibraryFeed::changed(const std::vector<WidgetLibraryItem>& items) {
    auto changes = nlohmann::json::array();
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (!differBesidesPicture(items[i], told_[i]))
            continue;
        auto picture = std::move(told_[i].snapshotData);
        told_[i] = items[i];
        told_[i].snapshotData = std::move(picture);
        changes.push_back({{"index", i}, {"item", LibraryMessages::encode(items[i])}});
    }
    if (changes.empty())
        return std::nullopt;
    return nlohmann::json{{"type", "changes"}, {"changes", std::move(changes)}};
}

std::optional<LibraryFeed::Preview> LibraryFeed::nextPreview(const std::vector<WidgetLibraryItem>& items) {
    for (; firstToCheck_ < std::min(items.size(), told_.size()); ++firstToCheck_) {
        const auto& picture = items[firstToCheck_].snapshotData;
        if (told_[firstToCheck_].snapshotData == picture)
            continue;
        told_[firstToCheck_].snapshotData = picture;
        return Preview{picture, firstToCheck_};
    }
    return std::nullopt;
}

} // namespace Ostrel
