#include "OstrelEngine/Meters/Text/TextLayout.h"

#include "OstrelCore/Text/Text.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace Ostrel {

namespace {

constexpr std::size_t MostUnits = 16'384;
constexpr char16_t Ellipsis = 0x2026;
/// Rounding in a sum of advances is no reason to break a line.
constexpr double WidthTolerance = 1.0 / 64;

std::vector<std::u16string_view> paragraphsOf(std::u16string_view text) {
    std::vector<std::u16string_view> paragraphs;
    for (;;) {
        const auto end = text.find(u'\n');
        paragraphs.push_back(text.substr(0, end));
        if (end == std::u16string_view::npos)
            return paragraphs;
        text.remove_prefix(end + 1);
    }
}

std::u16string_view withoutBlanksAtEnd(std::u16string_view text) {
    while (!text.empty() && isWhitespace(text.back()))
        text.remove_suffix(1);
    return text;
}

enum class BreakAt { words, characters };

/// Positions at which the text may be divided, its end last.
std::vector<std::size_t> divisions(std::u16string_view text, BreakAt where) {
    std::vector<std::size_t> positions;
    UErrorCode error = U_ZERO_ERROR;
    const auto& root = icu::Locale::getRoot();
    const std::unique_ptr<icu::BreakIterator> iterator(where == BreakAt::words
            ? icu::BreakIterator::createLineInstance(root, error)
            : icu::BreakIterator::createCharacterInstance(root, error));
    UText source = UTEXT_INITIALIZER;
    utext_openUChars(&source, text.data(), static_cast<int64_t>(text.size()), &error);
    if (U_SUCCESS(error)) {
        iterator->setText(&source, error);
        for (int32_t at = iterator->next(); U_SUCCESS(error) && at != icu::BreakIterator::DONE; at = iterator->next())
            positions.push_back(static_cast<std::size_t>(at));
    }
    utext_close(&source);
    if (positions.empty() || positions.back() != text.size())
        positions.push_back(text.size());
    return positions;
}

/// The running sum of the advances, one longer than the text.
std::vector<double> edgesOf(std::u16string_view text, const TextSetting& setting, TextDirection direction) {
    std::vector<double> edges(text.size() + 1, 0);
    const auto advances = TextShaper::advances(text, setting, direction);
    for (std::size_t i = 0; i < advances.size(); ++i)
        edges[i + 1] = edges[i] + advances[i];
    return edges;
}

/// Divides a paragraph into lines.
class LineBreaker {
public:
    LineBreaker(std::u16string_view text, const TextSetting& setting, TextDirection direction, double width)
        : text_(text)
        , width_(width)
        , edges_(edgesOf(text, setting, direction))
        , words_(divisions(text, BreakAt::words))
        , characters_(divisions(text, BreakAt::characters)) { }

    /// The end of the line that begins at `start`, with the blanks that the break swallows.
    std::size_t lineEnd(std::size_t start) const {
        std::size_t end = lastFitting(words_, start);
        if (end == start)
            end = lastFitting(characters_, start);
        // Where not one character fits, a line has one all the same.
        if (end == start)
            end = *std::upper_bound(characters_.begin(), characters_.end(), start);
        while (end < text_.size() && isWhitespace(text_[end]))
            ++end;
        return end;
    }
    bool fits(std::size_t start, std::size_t end) const {
        return edges_[end] - edges_[start] <= width_ + WidthTolerance;
    }

private:
    std::size_t lastFitting(const std::vector<std::size_t>& positions, std::size_t start) const {
        std::size_t fitting = start;
        for (auto at = std::upper_bound(positions.begin(), positions.end(), start); at != positions.end(); ++at) {
            const auto visible = withoutBlanksAtEnd(text_.substr(start, *at - start));
            if (!fits(start, start + visible.size()))
                break;
            fitting = *at;
        }
        return fitting;
    }

    std::u16string_view text_;
    double width_;
    std::vector<double> edges_;
    std::vector<std::size_t> words_;
    std::vector<std::size_t> characters_;
};

void appendBroken(
    TextLayout& layout, std::u16string_view text, const TextSetting& setting, TextDirection direction, double width) {
    const LineBreaker breaker(text, setting, direction, width);
    std::size_t start = 0;
    while (start < text.size()) {
        const auto end = breaker.lineEnd(start);
        auto line = text.substr(start, end - start);
        if (end < text.size() || !breaker.fits(start, end))
            line = withoutBlanksAtEnd(line);
        layout.lines.push_back(TextShaper::shape(line, setting, direction));
        start = end;
    }
}

enum class EllipsisWhen { tooWide, always };

TextLine withEllipsis(std::u16string_view text, const TextSetting& setting, double width, EllipsisWhen when) {
    const auto direction = TextRuns::baseDirection(text);
    auto line = TextShaper::shape(text, setting, direction);
    if (when == EllipsisWhen::tooWide && line.width <= width + WidthTolerance)
        return line;
    const double room = width - TextShaper::shape({&Ellipsis, 1}, setting, direction).width;
    const auto characters = divisions(text, BreakAt::characters);
    const auto edges = edgesOf(text, setting, direction);
    auto kept = std::partition_point(
        characters.begin(), characters.end(), [&](std::size_t end) { return edges[end] <= room; });
    // What stands before the ellipsis may shape a little wider there.
    for (int corrections = 0;; ++corrections) {
        const auto length = kept == characters.begin() ? 0 : *(kept - 1);
        const auto candidate = std::u16string(withoutBlanksAtEnd(text.substr(0, length))) + Ellipsis;
        line = TextShaper::shape(candidate, setting, direction);
        if (length == 0 || line.width <= width + WidthTolerance || corrections == 4)
            return line;
        --kept;
    }
}

} // namespace

double TextLayout::width() const {
    double widest = 0;
    for (const auto& line : lines)
        widest = std::max(widest, line.width);
    return widest;
}

double TextLayout::height() const {
    double sum = 0;
    for (const auto& line : lines)
        sum += line.height();
    return sum;
}

std::size_t TextLayout::linesWithin(double height) const {
    double bottom = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        bottom += lines[i].height();
        // The leading below the last line need not fit.
        if (i > 0 && bottom - lines[i].leading > height + WidthTolerance)
            return i;
    }
    return lines.size();
}

namespace TextLayouts {

std::u16string preparedText(std::string_view text, std::vector<std::uint32_t>* unitOfByte) {
    std::u16string result;
    if (unitOfByte)
        unitOfByte->clear();
    result.reserve(std::min(text.size(), MostUnits));
    for (std::size_t at = 0; at < text.size() && result.size() < MostUnits;) {
        const auto c = decodeCharacter(text, at);
        at += c.length;
        if (unitOfByte)
            unitOfByte->resize(at, static_cast<std::uint32_t>(result.size()));
        if (c.value == '\r' && at < text.size() && text[at] == '\n')
            continue;
        if (c.value == '\t')
            result.append(4, u' ');
        else if (isNewline(c.value))
            result.push_back(u'\n');
        else if (c.value > 0xFFFF)
            result.append({U16_LEAD(c.value), U16_TRAIL(c.value)});
        else if (c.value >= 0x20 && (c.value < 0x7F || c.value > 0x9F))
            result.push_back(static_cast<char16_t>(c.value));
    }
    if (unitOfByte)
        unitOfByte->resize(text.size() + 1, static_cast<std::uint32_t>(result.size()));
    return result;
}

std::vector<std::size_t> wordEnds(std::u16string_view text) {
    return divisions(text, BreakAt::words);
}

std::vector<std::size_t> characterEnds(std::u16string_view text) {
    return divisions(text, BreakAt::characters);
}

TextLayout inLines(std::u16string_view text, const TextSetting& setting, std::optional<double> maximumWidth) {
    TextLayout layout;
    for (const auto paragraph : paragraphsOf(text)) {
        const auto direction = TextRuns::baseDirection(paragraph);
        auto line = TextShaper::shape(paragraph, setting, direction);
        if (maximumWidth && line.width > *maximumWidth + WidthTolerance)
            appendBroken(layout, paragraph, setting, direction, *maximumWidth);
        else
            layout.lines.push_back(std::move(line));
    }
    return layout;
}

TextLayout truncated(std::u16string_view text, const TextSetting& setting, double width, double height) {
    const auto paragraphs = paragraphsOf(text);
    TextLayout layout;
    for (const auto paragraph : paragraphs)
        layout.lines.push_back(withEllipsis(paragraph, setting, width, EllipsisWhen::tooWide));
    const auto visible = layout.linesWithin(height);
    if (visible == layout.lines.size())
        return layout;
    layout.lines.resize(visible);
    layout.lines.back() = withEllipsis(paragraphs[visible - 1], setting, width, EllipsisWhen::always);
    return layout;
}

} // namespace TextLayouts

} // namespace Ostrel
