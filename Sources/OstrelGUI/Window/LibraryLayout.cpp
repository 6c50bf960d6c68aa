#include "OstrelGUI/Window/LibraryLayout.h"

#include <algorithm>

namespace Ostrel {

void LibraryLayout::layOut(std::span<const std::size_t> counts, int width) {
    width_ = width;
    columns_ = std::max(1, (width + cardSpacing) / (cardSize_.width() + cardSpacing));
    groups_.clear();
    groups_.reserve(counts.size());
    int top = 0;
    std::size_t firstStop = 0;
    for (const std::size_t count : counts) {
        const int rows = (static_cast<int>(count) + columns_ - 1) / columns_;
        const int bottom = top + HeaderHeight + rows * rowHeight();
        groups_.push_back({count, firstStop, top, bottom});
        top = bottom + GroupSpacing - cardSpacing;
        firstStop += count + 1;
    }
}

QRect LibraryLayout::header(std::size_t group) const {
    return {0, groups_[group].top, width_, HeaderHeight};
}

QRect LibraryLayout::card(std::size_t group, std::size_t index) const {
    const int column = static_cast<int>(index) % columns_;
    const int row = static_cast<int>(index) / columns_;
    const QPoint corner(
        column * (cardSize_.width() + cardSpacing), groups_[group].top + HeaderHeight + row * rowHeight());
    return {corner, cardSize_};
}

std::vector<LibraryLayout::VisibleGroup> LibraryLayout::visible(int top, int bottom) const {
    std::vector<VisibleGroup> result;
    auto group = std::upper_bound(
        groups_.begin(), groups_.end(), top, [](int y, const Group& candidate) { return y < candidate.bottom; });
    for (; group != groups_.end() && group->top < bottom; ++group) {
        const int cardsTop = group->top + HeaderHeight;
        const auto cardsBefore
            = [&](int rows) { return std::min(group->count, static_cast<std::size_t>(std::max(0, rows) * columns_)); };
        const std::size_t first = cardsBefore((top - cardsTop) / rowHeight());
        const std::size_t end
            = bottom <= cardsTop ? 0 : cardsBefore((bottom - cardsTop + rowHeight() - 1) / rowHeight());
        result.push_back({static_cast<std::size_t>(group - groups_.begin()), std::min(first, end), end});
    }
    return result;
}

std::optional<LibraryStop> LibraryLayout::at(QPoint position) const {
    for (const VisibleGroup& shown : visible(position.y(), position.y() + 1)) {
        if (header(shown.group).contains(position))
            return LibraryStop{shown.group, std::nullopt};
        for (std::size_t i = shown.firstCard; i < shown.endCard; ++i) {
            if (card(shown.group, i).contains(position))
                return LibraryStop{shown.group, i};
        }
    }
    return std::nullopt;
}

std::size_t LibraryLayout::stopCount() const {
    return groups_.empty() ? 0 : groups_.back().firstStop + groups_.back().count + 1;
}

LibraryStop LibraryLayout::stop(std::size_t index) const {
    const auto next = std::upper_bound(
        groups_.begin(), groups_.end(), index, [](std::size_t i, const Group& group) { return i < group.firstStop; });
    const auto group = next - 1;
    const std::size_t offset = index - group->firstStop;
    return {static_cast<std::size_t>(group - groups_.begin()), offset == 0 ? std::nullopt : std::optional(offset - 1)};
}

std::size_t LibraryLayout::index(LibraryStop stop) const {
    return groups_[stop.group].firstStop + (stop.card ? *stop.card + 1 : 0);
}

std::optional<LibraryStop> LibraryLayout::movedByRow(LibraryStop stop, int direction) const {
    const auto columns = static_cast<std::size_t>(columns_);
    const std::size_t count = groups_[stop.group].count;
    if (direction > 0) {
        if (!stop.card && count > 0)
            return LibraryStop{stop.group, 0};
        // From the row above a short one into its last card.
        if (stop.card && *stop.card / columns < (count - 1) / columns)
            return LibraryStop{stop.group, std::min(*stop.card + columns, count - 1)};
        if (stop.group + 1 < groups_.size())
            return LibraryStop{stop.group + 1, std::nullopt};
        return std::nullopt;
    }
    if (stop.card)
        return LibraryStop{stop.group, *stop.card >= columns ? std::optional(*stop.card - columns) : std::nullopt};
    if (stop.group == 0)
        return std::nullopt;
    const std::size_t above = groups_[stop.group - 1].count;
    return LibraryStop{stop.group - 1, above == 0 ? std::nullopt : std::optional((above - 1) / columns * columns)};
}

LibraryStop LibraryLayout::moved(LibraryStop stop, LibraryMove move, int rows) const {
    const std::size_t current = index(stop);
    switch (move) {
    case LibraryMove::previous:
        return this->stop(current == 0 ? 0 : current - 1);
    case LibraryMove::next:
        return this->stop(std::min(current + 1, stopCount() - 1));
    case LibraryMove::first:
        return this->stop(0);
    case LibraryMove::last:
        return this->stop(stopCount() - 1);
    case LibraryMove::up:
    case LibraryMove::down:
    case LibraryMove::pageUp:
    case LibraryMove::pageDown:
        break;
    }
    const int direction = move == LibraryMove::up || move == LibraryMove::pageUp ? -1 : 1;
    const bool isPage = move == LibraryMove::pageUp || move == LibraryMove::pageDown;
    for (int i = 0; i < (isPage ? rows : 1); ++i)
        stop = movedByRow(stop, direction).value_or(stop);
    return stop;
}

} // namespace Ostrel
