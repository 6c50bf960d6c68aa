#pragma once

#include "OstrelGUI/OstrelSessionState.h"
#include "OstrelGUI/WidgetLibraryItem.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace Ostrel {

/// The widgets of a session as the cards of the library, kept sorted: by package and within it by name, without regard
/// to case, as the user's language has it. A change that no card shows costs a look at each widget, and texts are
/// collated once in the life of their widget.
class SessionLibraryItems {
public:
    SessionLibraryItems();
    ~SessionLibraryItems();

    const std::vector<WidgetLibraryItem>& items() const { return items_; }
    /// Whether the items are others now.
    bool update(const OstrelSessionState& state);

private:
    class Collation;
    struct Card;

    bool updateInPlace(const OstrelSessionState& state);
    std::shared_ptr<Card> makeCard(const std::string& path);

    std::vector<WidgetLibraryItem> items_;
    /// The place in `items_` of each widget of the session, in its order.
    std::vector<std::size_t> places_;
    std::unordered_map<std::string, std::shared_ptr<Card>> cards_;
    std::unique_ptr<Collation> collation_;
};

} // namespace Ostrel
