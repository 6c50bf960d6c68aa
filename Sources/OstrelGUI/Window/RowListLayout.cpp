#include "OstrelGUI/Window/RowListLayout.h"

#include <algorithm>
#include <cmath>

namespace Ostrel {

namespace {

constexpr double NarrowestText = 40;
/// For a status: its icon, and air around it.
constexpr double StatusRoom = 44;

} // namespace

double RowListLayout::textWidth(const Row& row, int width) const {
    const double status = row.status.isEmpty() ? 0 : texts_.width(row.status) + StatusRoom;
    return std::max(NarrowestText, width - 2 * spacing_.inset - IconColumn - status);
}

void RowListLayout::layOut(std::span<const Row> rows, int width) {
    bottoms_.clear();
    bottoms_.reserve(rows.size());
    int bottom = 0;
    for (const Row& row : rows) {
        double content = row.heading.isEmpty() ? 0 : headings_.lineHeight() + Leading;
        if (!row.text.isEmpty())
            content += static_cast<double>(wrappedLines(row.text, textWidth(row, width), texts_).size())
                * texts_.lineHeight();
        bottom += static_cast<int>(std::ceil(content)) + 2 * Padding + spacing_.gap;
        bottoms_.push_back(bottom);
    }
}

std::pair<int, int> RowListLayout::verticalExtent(std::size_t row) const {
    return {row == 0 ? 0 : bottoms_[row - 1], bottoms_[row] - spacing_.gap};
}

std::pair<std::size_t, std::size_t> RowListLayout::rowsBetween(int top, int bottom) const {
    const auto first = std::upper_bound(bottoms_.begin(), bottoms_.end(), top);
    const auto last = std::lower_bound(first, bottoms_.end(), bottom);
    const auto end = last == bottoms_.end() ? last : last + 1;
    return {static_cast<std::size_t>(first - bottoms_.begin()), static_cast<std::size_t>(end - bottoms_.begin())};
}

} // namespace Ostrel
