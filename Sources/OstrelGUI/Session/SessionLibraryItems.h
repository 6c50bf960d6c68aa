#pragma once

#include "OstrelGUI/Session/OstrelSessionState.h"
#include "OstrelGUI/WidgetLibraryItem.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace Ostrel {

/// The widgets of a session as the cards of the library, sorted: by package and within it by name, without regard to
/// case, as the user's language has it. Nothing is sorted until the items are asked for, and each text is collated once
/// in the life of its widget: most starts never show the library, and a dragged widget changes no card.
class SessionLibraryItems {
public:
    SessionLibraryItems();
    ~SessionLibraryItems();

    /// Asked for widgets that are marked as rendered; the others do not run. Null: none runs.
    using IsRunning = std::function<bool(const std::string& path)>;
    /// By path, what is to be said of a widget that is not shown.
    using Failures = std::map<std::string, std::string>;
    /// Whether the items are others now.
    bool update(const OstrelSessionState& state, const IsRunning& isRunning = nullptr, const Failures& failures = {});
    /// As of the last update; good until the next one.
    const std::vector<WidgetLibraryItem>& items();

private:
    class Collation;
    struct Card;

    bool updateInPlace(const OstrelSessionState& state, const IsRunning& isRunning, const Failures& failures);
    void takeCards(const OstrelSessionState& state);
    void sort();

    /// In the session's order.
    std::vector<std::shared_ptr<Card>> cards_;
    std::unordered_map<std::string, std::shared_ptr<Card>> cardsByPath_;
    std::vector<WidgetLibraryItem> items_;
    /// The card of each item.
    std::vector<const Card*> order_;
    bool isSorted_ = false;
    bool isStale_ = false;
    std::unique_ptr<Collation> collation_;
};

} // namespace Ostrel
