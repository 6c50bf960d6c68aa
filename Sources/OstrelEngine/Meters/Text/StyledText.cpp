#include "OstrelEngine/Meters/Text/StyledText.h"

#include "OstrelCore/Text/Text.h"

#include <unicode/ubidi.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace Ostrel {

namespace {

constexpr char16_t Ellipsis = 0x2026;
/// Rounding in a sum of advances is no reason to break a line.
constexpr double WidthTolerance = 1.0 / 64;
constexpr char16_t FirstComplexCharacter = 0x590;

/// A stretch of a line that is shaped as one, in the order in which it is seen.
struct Portion {
    std::size_t begin = 0;
    std::size_t end = 0;
    TextDirection direction = TextDirection::leftToRight;
};

/// Ends of the stretches that are set alike, within [begin, end).
std::vector<Portion> portionsSetAlike(
    const StyledText& text, std::size_t begin, std::size_t end, TextDirection direction) {
    std::vector<Portion> portions;
    auto stretch = std::upper_bound(text.stretches.begin(), text.stretches.end(), begin,
        [](std::size_t at, const StyledText::Stretch& s) { return at < s.end; });
    for (std::size_t at = begin; at < end && stretch != text.stretches.end(); ++stretch) {
        const std::size_t stop = std::min(end, stretch->end);
        const bool isAlike
            = !portions.empty() && text.styles[std::prev(stretch)->style].setsAlike(text.styles[stretch->style]);
        if (isAlike)
            portions.back().end = stop;
        else
            portions.push_back({at, stop, direction});
        at = stop;
    }
    return portions;
}

bool mayRunToTheLeft(std::u16string_view text) {
    return std::any_of(text.begin(), text.end(), [](char16_t c) { return c >= FirstComplexCharacter; });
}

/// The portions of a line whose fonts differ, where its scripts may run in both directions.
std::vector<Portion> bidirectional(const StyledText& text, std::size_t begin, std::size_t end, TextDirection base) {
    using Bidi = std::unique_ptr<UBiDi, decltype(&ubidi_close)>;
    const Bidi bidi(ubidi_open(), &ubidi_close);
    UErrorCode error = U_ZERO_ERROR;
    ubidi_setPara(bidi.get(), text.text.data() + begin, static_cast<int32_t>(end - begin),
        base == TextDirection::rightToLeft ? 1 : 0, nullptr, &error);
    const int32_t count = ubidi_countRuns(bidi.get(), &error);
    if (U_FAILURE(error))
        return portionsSetAlike(text, begin, end, base);
    std::vector<Portion> portions;
    for (int32_t i = 0; i < count; ++i) {
        int32_t start = 0;
        int32_t length = 0;
        const bool isLeft = ubidi_getVisualRun(bidi.get(), i, &start, &length) == UBIDI_RTL;
        auto run = portionsSetAlike(text, begin + static_cast<std::size_t>(start),
            begin + static_cast<std::size_t>(start + length),
            isLeft ? TextDirection::rightToLeft : TextDirection::leftToRight);
        if (isLeft)
            std::reverse(run.begin(), run.end());
        portions.insert(portions.end(), run.begin(), run.end());
    }
    return portions;
}

std::vector<Portion> portionsOf(const StyledText& text, std::size_t begin, std::size_t end) {
    const auto line = std::u16string_view(text.text).substr(begin, end - begin);
    const auto base = TextRuns::baseDirection(line);
    auto portions = portionsSetAlike(text, begin, end, base);
    if (portions.size() > 1 && mayRunToTheLeft(line))
        return bidirectional(text, begin, end, base);
    return portions;
}

TextSetting settingOf(const TextStyle& style) {
    FontLookup::Request request;
    request.isBold = style.family.isBold || style.family.weight.value_or(0) >= 600;
    request.isItalic = style.family.isItalic;
    return {{request, style.typeface}, style.size, 0};
}

TextShaper::ShapedText shapedPortion(const StyledText& text, const Portion& portion, const TextStyle& style) {
    const auto part = std::u16string_view(text.text).substr(portion.begin, portion.end - portion.begin);
    auto shaped = TextShaper::glyphs(part, settingOf(style), portion.direction, style.isSpaced(), style.features);
    for (auto& glyph : shaped.glyphs)
        glyph.unit += static_cast<std::uint32_t>(portion.begin);
    return shaped;
}

double spacedAdvance(const TextStyle& style, const TextShaper::ShapedGlyph& glyph, bool beginsCluster) {
    double advance = glyph.advance + (beginsCluster ? style.leading : 0) + (glyph.endsCluster ? style.trailing : 0);
    if (glyph.endsCluster && style.leastAdvance > 0)
        advance = std::max(advance, style.leastAdvance);
    return advance;
}

void takeInMetrics(StyledLine& line, const TextStyle& style) {
    const auto& metrics = style.typeface->metrics();
    line.ascent = std::max(line.ascent, metrics.ascent * style.size);
    line.descent = std::max(line.descent, metrics.descent * style.size);
}

void appendGlyph(StyledLine& line, std::size_t style, double size, const TextShaper::ShapedText& shaped,
    const TextShaper::ShapedGlyph& glyph, double lead) {
    if (line.pieces.empty() || line.pieces.back().style != style)
        line.pieces.push_back({{}, style, line.width, line.width});
    auto& piece = line.pieces.back().line;
    const auto& typeface = shaped.runs[glyph.run].typeface;
    const PlacedGlyph placed{glyph.glyph, static_cast<float>(line.width + lead + glyph.x), static_cast<float>(glyph.y)};
    TextShaper::takeInInk(piece, *typeface, placed, size);
    piece.glyphs.push_back(placed);
    if (piece.spans.empty() || piece.spans.back().typeface != typeface)
        piece.spans.push_back({typeface, 0});
    piece.spans.back().end = piece.glyphs.size();
}

/// Shapes [begin, end) into a line.
StyledLine shapedLine(const StyledText& text, std::size_t begin, std::size_t end) {
    StyledLine line;
    for (const auto& portion : portionsOf(text, begin, end)) {
        const auto shaped = shapedPortion(text, portion, text.styles[text.styleAt(portion.begin)]);
        bool beginsCluster = true;
        for (const auto& glyph : shaped.glyphs) {
            const auto number = text.styleAt(glyph.unit);
            const auto& style = text.styles[number];
            appendGlyph(line, number, style.size, shaped, glyph, beginsCluster ? style.leading : 0);
            line.width += spacedAdvance(style, glyph, beginsCluster);
            line.pieces.back().right = line.width;
            beginsCluster = glyph.endsCluster;
        }
    }
    for (const auto& piece : line.pieces)
        takeInMetrics(line, text.styles[piece.style]);
    if (line.pieces.empty())
        takeInMetrics(line, text.styles[text.stretches.empty() ? 0 : text.styleAt(begin)]);
    return line;
}

/// The running sum of the advances of a paragraph, one longer than it.
std::vector<double> edgesOf(const StyledText& text, std::size_t begin, std::size_t end) {
    std::vector<double> edges(end - begin + 1, 0);
    for (const auto& portion : portionsOf(text, begin, end)) {
        const auto& style = text.styles[text.styleAt(portion.begin)];
        bool beginsCluster = true;
        for (const auto& glyph : shapedPortion(text, portion, style).glyphs) {
            edges[glyph.unit - begin + 1] += spacedAdvance(style, glyph, beginsCluster);
            beginsCluster = glyph.endsCluster;
        }
    }
    for (std::size_t i = 1; i < edges.size(); ++i)
        edges[i] += edges[i - 1];
    return edges;
}

/// A line as a part of the text: its end without and with the blanks that a break swallows.
struct LineRange {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t next = 0;
    std::size_t paragraphEnd = 0;
};

std::size_t withoutBlanks(std::u16string_view text, std::size_t begin, std::size_t end) {
    while (end > begin && isWhitespace(text[end - 1]))
        --end;
    return end;
}

/// Divides the text into lines, and gives the last one that has room its ellipsis.
class Divider {
public:
    Divider(const StyledText& text, const StyledLayouts::Room& room)
        : text_(text)
        , room_(room) { }

    StyledLayout layout() {
        StyledLayout layout;
        std::size_t begin = 0;
        for (;;) {
            const auto found = text_.text.find(u'\n', begin);
            const auto end = found == std::u16string::npos ? text_.text.size() : found;
            const bool isLast = found == std::u16string::npos;
            for (const auto& range : rangesOf(begin, end)) {
                if (!append(layout, range, isLast))
                    return layout;
            }
            if (isLast)
                return layout;
            begin = end + 1;
        }
    }

private:
    std::size_t visibleEnd(std::size_t begin, std::size_t end) const {
        return room_.keepsBlanks ? end : withoutBlanks(text_.text, begin, end);
    }

    std::vector<LineRange> rangesOf(std::size_t begin, std::size_t end) const {
        if (!room_.width || room_.breaking == StyledLayouts::Room::Breaking::Never)
            return {{begin, visibleEnd(begin, end), end, end}};
        const auto edges = edgesOf(text_, begin, end);
        const double width = *room_.width + WidthTolerance;
        const auto fits = [&](std::size_t from, std::size_t to) {
            return edges[withoutBlanks(text_.text, from, to) - begin] - edges[from - begin] <= width;
        };
        if (fits(begin, end))
            return {{begin, visibleEnd(begin, end), end, end}};
        return broken(begin, end, fits);
    }

    template <typename Fits> std::vector<LineRange> broken(std::size_t begin, std::size_t end, const Fits& fits) const {
        const auto paragraph = std::u16string_view(text_.text).substr(begin, end - begin);
        const bool takesWords = room_.breaking == StyledLayouts::Room::Breaking::Words;
        const auto words = takesWords ? TextLayouts::wordEnds(paragraph) : blankEnds(paragraph);
        const auto characters = takesWords ? TextLayouts::characterEnds(paragraph) : std::vector<std::size_t>();
        const auto lastFitting = [&](const std::vector<std::size_t>& ends, std::size_t start) {
            std::size_t fitting = start;
            auto at = std::upper_bound(ends.begin(), ends.end(), start - begin);
            for (; at != ends.end() && fits(start, begin + *at); ++at)
                fitting = begin + *at;
            return fitting;
        };
        std::vector<LineRange> ranges;
        for (std::size_t start = begin; start < end;) {
            auto stop = lastFitting(words, start);
            if (stop == start && takesWords)
                stop = lastFitting(characters, start);
            // Where nothing fits, a line has one word or character all the same.
            if (stop == start) {
                const auto& ends = takesWords ? characters : words;
                stop = begin + *std::upper_bound(ends.begin(), ends.end(), start - begin);
            }
            while (stop < end && isWhitespace(text_.text[stop]))
                ++stop;
            ranges.push_back({start, withoutBlanks(text_.text, start, stop), stop, end});
            start = stop;
        }
        return ranges;
    }

    static std::vector<std::size_t> blankEnds(std::u16string_view text) {
        std::vector<std::size_t> ends;
        for (std::size_t i = 1; i < text.size(); ++i) {
            if (isWhitespace(text[i - 1]) && !isWhitespace(text[i]))
                ends.push_back(i);
        }
        ends.push_back(text.size());
        return ends;
    }

    /// False when the line was the last that had room.
    bool append(StyledLayout& layout, const LineRange& range, bool isLastParagraph) {
        const bool endsText = isLastParagraph && range.next == range.paragraphEnd;
        auto line = shapedLine(text_, range.begin, range.end);
        const bool isOver
            = !layout.lines.empty() && room_.height && layout.height + line.height() > *room_.height + WidthTolerance;
        if (isOver) {
            // The line before it was the last.
            withEllipsis(layout);
            return false;
        }
        last_ = range;
        add(layout, std::move(line));
        if (!room_.lines || layout.lines.size() < *room_.lines || endsText)
            return true;
        withEllipsis(layout);
        return false;
    }

    static void add(StyledLayout& layout, StyledLine line) {
        layout.width = std::max(layout.width, line.width);
        layout.height += line.height();
        layout.lines.push_back(std::move(line));
    }

    /// Sets the last line again, with an ellipsis behind as much of its paragraph as there is room for.
    void withEllipsis(StyledLayout& layout) const {
        layout.height -= layout.lines.back().height();
        layout.lines.pop_back();
        layout.width = 0;
        for (const auto& line : layout.lines)
            layout.width = std::max(layout.width, line.width);
        add(layout, ellipsized(last_.begin, last_.paragraphEnd));
    }

    StyledLine ellipsized(std::size_t begin, std::size_t end) const {
        const double width = room_.width.value_or(1e9);
        const auto edges = edgesOf(text_, begin, end);
        const auto ends = TextLayouts::characterEnds(std::u16string_view(text_.text).substr(begin, end - begin));
        const double room = width - shapedWithEllipsis(begin, begin).width;
        auto kept = std::partition_point(ends.begin(), ends.end(), [&](std::size_t at) { return edges[at] <= room; });
        // What stands before the ellipsis may shape a little wider there.
        for (int corrections = 0;; ++corrections) {
            const auto length = kept == ends.begin() ? 0 : *(kept - 1);
            auto line = shapedWithEllipsis(begin, withoutBlanks(text_.text, begin, begin + length));
            if (length == 0 || line.width <= width + WidthTolerance || corrections == 4)
                return line;
            --kept;
        }
    }

    StyledLine shapedWithEllipsis(std::size_t begin, std::size_t end) const {
        StyledText part;
        part.styles = text_.styles;
        part.text = text_.text.substr(begin, end - begin) + Ellipsis;
        for (const auto& stretch : text_.stretches) {
            if (stretch.end > begin)
                part.stretches.push_back({std::min(stretch.end, end) - begin, stretch.style});
            if (stretch.end >= end && !part.stretches.empty())
                break;
        }
        if (part.stretches.empty())
            part.stretches.push_back({});
        part.stretches.back().end = part.text.size();
        return shapedLine(part, 0, part.text.size());
    }

    const StyledText& text_;
    const StyledLayouts::Room& room_;
    LineRange last_;
};

} // namespace

bool TextStyle::setsAlike(const TextStyle& other) const {
    return typeface == other.typeface && size == other.size && leading == other.leading && trailing == other.trailing
        && leastAdvance == other.leastAdvance && features == other.features && family.isItalic == other.family.isItalic;
}

std::size_t StyledText::styleAt(std::size_t unit) const {
    if (stretches.size() == 1)
        return stretches.front().style;
    const auto found = std::upper_bound(
        stretches.begin(), stretches.end(), unit, [](std::size_t at, const Stretch& s) { return at < s.end; });
    return found == stretches.end() ? (stretches.empty() ? 0 : stretches.back().style) : found->style;
}

StyledLayout StyledLayouts::layout(const StyledText& text, const Room& room) {
    return Divider(text, room).layout();
}

} // namespace Ostrel
