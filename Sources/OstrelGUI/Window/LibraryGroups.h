#pragma once

#include "OstrelGUI/WidgetLibraryItem.h"

#include <span>
#include <string>
#include <vector>

namespace Ostrel {

/// The items of one package, as the library shows them.
struct LibraryGroup {
    std::string packageName;
    std::vector<WidgetLibraryItem> items;
};

/// By package, then by name, both without regard to case, in the order of the user's language.
std::vector<LibraryGroup> groupedItems(std::span<const WidgetLibraryItem> items);

/// Whether the two differ only in what a card shows: its picture or its state. Then nothing moves.
bool haveSamePlaces(std::span<const WidgetLibraryItem> a, std::span<const WidgetLibraryItem> b);

} // namespace Ostrel
