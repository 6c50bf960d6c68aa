#include "OstrelGUI/Window/LibraryGroups.h"

#include "OstrelGUI/Window/QtText.h"

#include <QCollator>

#include <algorithm>
#include <map>
#include <string>

namespace Ostrel {

namespace {

/// Without a language there still is an order of letters, not of bytes.
QLocale userLocale() {
    const QLocale locale;
    return locale.language() == QLocale::C ? QLocale(QLocale::English) : locale;
}

/// Sorts by keys that are made once for each element, since a comparison of two texts costs as much as a key.
template <typename Element, typename Name>
void sortByName(std::vector<Element>& elements, const QCollator& collator, Name name) {
    std::vector<std::pair<QCollatorSortKey, std::size_t>> order;
    order.reserve(elements.size());
    for (std::size_t i = 0; i < elements.size(); ++i)
        order.emplace_back(collator.sortKey(textOf(name(elements[i]))), i);
    std::stable_sort(
        order.begin(), order.end(), [](const auto& a, const auto& b) { return a.first.compare(b.first) < 0; });
    std::vector<Element> sorted;
    sorted.reserve(elements.size());
    for (const auto& [key, index] : order)
        sorted.push_back(std::move(elements[index]));
    elements = std::move(sorted);
}

} // namespace

std::vector<LibraryGroup> groupedItems(std::span<const WidgetLibraryItem> items) {
    std::map<std::string, std::vector<WidgetLibraryItem>> byPackage;
    for (const WidgetLibraryItem& item : items)
        byPackage[item.packageName].push_back(item);
    QCollator collator(userLocale());
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::vector<LibraryGroup> groups;
    for (auto& [name, members] : byPackage) {
        sortByName(members, collator, [](const WidgetLibraryItem& item) { return item.displayName; });
        groups.push_back({name, std::move(members)});
    }
    sortByName(groups, collator, [](const LibraryGroup& group) { return group.packageName; });
    return groups;
}

bool haveSamePlaces(std::span<const WidgetLibraryItem> a, std::span<const WidgetLibraryItem> b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return x.path == y.path && x.packageName == y.packageName && x.displayName == y.displayName
            && x.relativePath == y.relativePath;
    });
}

} // namespace Ostrel
