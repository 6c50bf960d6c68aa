#include "OstrelGUI/SessionLibraryItems.h"

#include "OstrelCore/Paths.h"
#include "OstrelGUI/SessionPaths.h"

#include <unicode/coll.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <numeric>
#include <tuple>

namespace Ostrel {

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
    WidgetLibraryItem item;
    std::string packageKey;
    std::string nameKey;

    /// What collates alike stands in an order too, so that cards do not jump.
    auto order() const { return std::tie(packageKey, item.packageName, nameKey, item.displayName, item.path); }
};

namespace {

std::string withoutExtension(const std::string& name) {
    const auto extension = pathExtension(name);
    return extension.empty() ? name : name.substr(0, name.size() - extension.size() - 1);
}

} // namespace

SessionLibraryItems::SessionLibraryItems() = default;
SessionLibraryItems::~SessionLibraryItems() = default;

bool SessionLibraryItems::update(const OstrelSessionState& state) {
    const auto isKnown
        = [this](const OstrelWidgetState& widget, std::size_t place) { return widget.path == items_[place].path; };
    if (std::ranges::equal(state.widgets, places_, isKnown))
        return updateInPlace(state);

    std::vector<std::shared_ptr<Card>> cards;
    std::unordered_map<std::string, std::shared_ptr<Card>> kept;
    for (const auto& widget : state.widgets) {
        const auto known = cards_.find(widget.path);
        auto card = known != cards_.end() ? known->second : makeCard(widget.path);
        kept.emplace(widget.path, card);
        cards.push_back(std::move(card));
    }
    cards_ = std::move(kept);

    std::vector<std::size_t> order(cards.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::sort(order, [&](auto a, auto b) { return cards[a]->order() < cards[b]->order(); });
    items_.clear();
    places_.resize(cards.size());
    for (const auto position : order) {
        places_[position] = items_.size();
        items_.push_back(cards[position]->item);
    }
    updateInPlace(state);
    return true;
}

bool SessionLibraryItems::updateInPlace(const OstrelSessionState& state) {
    bool isChanged = false;
    for (std::size_t i = 0; i < state.widgets.size(); ++i) {
        const auto& widget = state.widgets[i];
        auto& item = items_[places_[i]];
        if (item.isRendered == widget.isRendered && item.snapshotData == widget.snapshotData)
            continue;
        item.isRendered = widget.isRendered;
        item.snapshotData = widget.snapshotData;
        isChanged = true;
    }
    return isChanged;
}

std::shared_ptr<SessionLibraryItems::Card> SessionLibraryItems::makeCard(const std::string& path) {
    // Loading its rules takes a while.
    if (!collation_)
        collation_ = std::make_unique<Collation>();
    auto [package, relativePath] = packageInfoForPath(path);
    auto card = std::make_shared<Card>();
    card->item = {.path = path,
        .displayName = withoutExtension(lastPathComponent(path)),
        .packageName = std::move(package),
        .relativePath = std::move(relativePath)};
    card->packageKey = collation_->keyOf(card->item.packageName);
    card->nameKey = collation_->keyOf(card->item.displayName);
    return card;
}

} // namespace Ostrel
