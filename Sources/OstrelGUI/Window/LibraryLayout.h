#pragma once

#include <QRect>

#include <optional>
#include <span>
#include <vector>

namespace Ostrel {

/// What can be pressed in the library: a card's button, or without a card the group's own, which removes the pack.
struct LibraryStop {
    std::size_t group = 0;
    std::optional<std::size_t> card;

    friend bool operator==(const LibraryStop&, const LibraryStop&) = default;
};

enum class LibraryMove { previous, next, up, down, first, last, pageUp, pageDown };

/// Where groups and cards stand: a header for each group, below it its cards in as many columns as fit. Nothing is kept
/// for a card; a place is computed when it is asked for.
class LibraryLayout {
public:
    static constexpr int cardWidth = 204;
    static constexpr int cardSpacing = 16;
    static constexpr int CardHeight = 236;
    static constexpr int HeaderHeight = 52;
    static constexpr int GroupSpacing = 20;

    /// All cards are alike; `cardWidth` by `CardHeight` unless larger type needs more.
    void setCardSize(QSize size) { cardSize_ = size; }
    QSize cardSize() const { return cardSize_; }
    /// `counts`: the number of cards in each group.
    void layOut(std::span<const std::size_t> counts, int width);

    int height() const { return groups_.empty() ? 0 : groups_.back().bottom; }
    int columns() const { return columns_; }
    std::size_t groupCount() const { return groups_.size(); }
    QRect header(std::size_t group) const;
    QRect card(std::size_t group, std::size_t index) const;

    /// The groups that touch the interval, and of each the cards in the rows that do: first, and one past the last.
    struct VisibleGroup {
        std::size_t group = 0;
        std::size_t firstCard = 0;
        std::size_t endCard = 0;
    };
    std::vector<VisibleGroup> visible(int top, int bottom) const;
    /// The card at the place, or the group whose header is there.
    std::optional<LibraryStop> at(QPoint position) const;

    /// Where the keyboard goes from `stop`; `rows` are the rows of a page.
    LibraryStop moved(LibraryStop stop, LibraryMove move, int rows = 1) const;

    /// All stops in a row, as they are read: each group's own, then its cards'.
    std::size_t stopCount() const;
    LibraryStop stop(std::size_t index) const;
    std::size_t index(LibraryStop stop) const;

private:
    struct Group {
        std::size_t count = 0;
        std::size_t firstStop = 0;
        int top = 0;
        int bottom = 0;
    };
    std::optional<LibraryStop> movedByRow(LibraryStop stop, int direction) const;

    std::vector<Group> groups_;
    int rowHeight() const { return cardSize_.height() + cardSpacing; }

    QSize cardSize_{cardWidth, CardHeight};
    int width_ = 0;
    int columns_ = 1;
};

} // namespace Ostrel
