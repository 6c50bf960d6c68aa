#pragma once

#include "OstrelGUI/Window/WrappedText.h"

#include <QString>

#include <span>
#include <utility>
#include <vector>

namespace Ostrel {

/// Where the rows of a long list stand: below each other, each as high as its wrapped text. Tens of thousands of rows
/// are laid out anew at every width without a noticeable pause.
class RowListLayout {
public:
    struct Row {
        /// A line of its own above the text; empty when there is none.
        QString heading;
        QString text;
        /// Right of both; empty when there is none.
        QString status;
    };

    /// Room around the rows, for rows that stand apart.
    struct Spacing {
        int inset = 0;
        int gap = 0;
    };

    /// The widths outlive the layout.
    RowListLayout(const CharacterWidths& headings, const CharacterWidths& texts, Spacing spacing)
        : headings_(headings)
        , texts_(texts)
        , spacing_(spacing) { }

    void layOut(std::span<const Row> rows, int width);

    int height() const { return bottoms_.empty() ? 0 : bottoms_.back() - spacing_.gap; }
    /// Without the gap that follows.
    std::pair<int, int> verticalExtent(std::size_t row) const;
    /// The rows that touch the interval: the first, and one past the last.
    std::pair<std::size_t, std::size_t> rowsBetween(int top, int bottom) const;
    /// What is left for the text beside icon and status.
    double textWidth(const Row& row, int width) const;

    static constexpr int Padding = 10;
    /// Between a heading and its text.
    static constexpr int Leading = 2;
    static constexpr int IconColumn = 30;

private:
    const CharacterWidths& headings_;
    const CharacterWidths& texts_;
    Spacing spacing_;
    std::vector<int> bottoms_;
};

} // namespace Ostrel
