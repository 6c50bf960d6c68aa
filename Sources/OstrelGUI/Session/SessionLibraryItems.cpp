#include "OstrelGUI/Session/SessionLibraryItems.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelGUI/SessionPaths.h"

#include <unicode/coll.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace Ostrel {

namespace {

std::string withoutExtension(const std::string& name) {
    const auto extension = pathExtension(name);
    return extension.empty() ? name : name.substr(0, name.size() - extension.size() - 1);
}

} // namespace

/// Texts as bytes whose order is that of a dictionary.
class SessionLibraryItems::Collation {
public:
    Collation() {
        UErrorCode status = U_ZERO_ERROR;
        // Where no language is set, texts would be in the order of their bytes.
        const bool isPOSIX = std::string_view(icu::Locale::getDefault().getVariant()) == "POSIX";
        collator_.reset(
            icu::Collator::createInstance(isPOSIX ? icu::Locale::getRoot() : icu::Locale::getDefault(), status));
        if (U_FAILURE(status))
            collator_.reset();
        else
            collator_->setStrength(icu::Collator::SECONDARY); // accents count, case does not
    }

    std::string keyOf(const std::string& text) const {
        if (!collator_)
            return text;
        const auto unicode = icu::UnicodeString::fromUTF8(text);
        std::string key(static_cast<std::size_t>(collator_->getSortKey(unicode, nullptr, 0)), '\0');
        collator_->getSortKey(unicode, reinterpret_cast<std::uint8_t*>(key.data()), static_cast<int>(key.size()));
        return key;
    }

private:
    std::unique_ptr<icu::Collator> collator_;
};

struct SessionLibraryItems::Card {
    explicit Card(const std::string& path) {
        auto [package, relativePath] = packageInfoForPath(path);
        item = {.path = path,
            .displayName = withoutExtension(lastPathComponent(path)),
            .packageName = std::move(package),
            .relativePath = std::move(relativePath)};
    }

    void loadPicture() {
        if (std::exchange(loaded, picture) != picture)
            item.snapshotData = picture ? picture->bytes() : nullptr;
    }

    /// Its picture is that of `loaded`.
    WidgetLibraryItem item;
    std::shared_ptr<const SnapshotPicture> picture;
    std::shared_ptr<const SnapshotPicture> loaded;
    /// Empty until it is sorted for the first time.
    std::string packageKey;
    std::string nameKey;

    /// What collates alike stands in an order too, so that cards do not jump.
    auto order() const { return std::tie(packageKey, item.packageName, nameKey, item.displayName, item.path); }
};

SessionLibraryItems::SessionLibraryItems() = default;
SessionLibraryItems::~SessionLibraryItems() = default;

bool SessionLibraryItems::update(
    const OstrelSessionState& state, const IsRunning& isRunning, const Failures& failures) {
    const bool areSame = std::ranges::equal(state.widgets, cards_,
        [](const OstrelWidgetState& widget, const auto& card) { return widget.path == card->item.path; });
    if (!areSame)
        takeCards(state);
    const bool isChanged = updateInPlace(state, isRunning, failures) || !areSame;
    isStale_ = isStale_ || isChanged;
    return isChanged;
}

void SessionLibraryItems::takeCards(const OstrelSessionState& state) {
    std::unordered_map<std::string, std::shared_ptr<Card>> kept;
    cards_.clear();
    for (const auto& widget : state.widgets) {
        const auto known = cardsByPath_.find(widget.path);
        cards_.push_back(known == cardsByPath_.end() ? std::make_shared<Card>(widget.path) : known->second);
        kept.emplace(widget.path, cards_.back());
    }
    cardsByPath_ = std::move(kept);
    isSorted_ = false;
}

bool SessionLibraryItems::updateInPlace(
    const OstrelSessionState& state, const IsRunning& isRunning, const Failures& failures) {
    bool isChanged = false;
    for (std::size_t i = 0; i < cards_.size(); ++i) {
        const auto& widget = state.widgets[i];
        auto& card = *cards_[i];
        const bool runs = widget.isRendered && isRunning && isRunning(widget.path);
        const auto failure = failures.find(widget.path);
        const std::string message = failure == failures.end() ? std::string() : failure->second;
        if (card.item.isRendered == widget.isRendered && card.item.failure == message && card.item.isRunning == runs
            && card.picture == widget.snapshotData)
            continue;
        card.item.isRendered = widget.isRendered;
        card.item.isRunning = runs;
        card.item.failure = message;
        card.picture = widget.snapshotData;
        isChanged = true;
    }
    return isChanged;
}

const std::vector<WidgetLibraryItem>& SessionLibraryItems::items() {
    if (!std::exchange(isStale_, false))
        return items_;
    for (const auto& card : cards_)
        card->loadPicture();
    if (std::exchange(isSorted_, true)) {
        for (std::size_t i = 0; i < order_.size(); ++i) {
            items_[i].isRendered = order_[i]->item.isRendered;
            items_[i].isRunning = order_[i]->item.isRunning;
            items_[i].failure = order_[i]->item.failure;
            items_[i].snapshotData = order_[i]->item.snapshotData;
        }
        return items_;
    }
    sort();
    items_.clear();
    for (const auto* card : order_)
        items_.push_back(card->item);
    return items_;
}

void SessionLibraryItems::sort() {
    order_.clear();
    for (const auto& card : cards_) {
        order_.push_back(card.get());
        if (!card->packageKey.empty())
            continue;
        if (!collation_)
            collation_ = std::make_unique<Collation>();
        card->packageKey = collation_->keyOf(card->item.packageName);
        card->nameKey = collation_->keyOf(card->item.displayName);
    }
    std::ranges::sort(order_, [](const auto* a, const auto* b) { return a->order() < b->order(); });
}

} // namespace Ostrel
