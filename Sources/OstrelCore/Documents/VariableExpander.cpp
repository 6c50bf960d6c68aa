#include "OstrelCore/Documents/VariableExpander.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

namespace {

constexpr auto None = std::string_view::npos;

/// The first occurrence of a mark. Each place that begins like the mark costs as much as many bytes that do not.
std::size_t findMark(std::string_view text, std::string_view mark, std::size_t from, std::size_t& work) {
    for (auto at = text.find(mark.front(), from); at != None; at = text.find(mark.front(), at + 1)) {
        work += VariableExpander::SearchWork;
        if (text.substr(at).starts_with(mark))
            return at;
    }
    return None;
}

/// The first occurrence of a mark at or after a position that never goes back. Remembers it, so that many openers
/// before one far or missing closer cost one search.
class NextMark {
public:
    NextMark(std::string_view text, std::string_view mark, std::size_t& work)
        : text_(text)
        , mark_(mark)
        , work_(work) { }

    std::size_t from(std::size_t position) {
        if (!searched_ || (found_ != None && found_ < position))
            found_ = findMark(text_, mark_, position, work_);
        searched_ = true;
        return found_;
    }

private:
    std::string_view text_;
    std::string_view mark_;
    std::size_t& work_;
    std::size_t found_ = None;
    bool searched_ = false;
};

bool mayNeedExpansion(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) { return c == '#' || c == '['; });
}

/// Where the part begins that a later pass may still change: at the first "#", or at a bracket that belongs to it.
/// Absent when all is settled.
std::optional<std::size_t> firstOpener(std::string_view text, std::size_t from) {
    const auto hash = text.find('#', from);
    if (hash == None)
        return std::nullopt;
    // That bracket may stand before `from`, when what was replaced begins with the "#".
    return hash > 0 && text[hash - 1] == '[' ? hash - 1 : hash;
}

std::string replaceEscapePattern(std::string_view text, std::string_view open, std::string_view close,
    std::string_view replaceOpen, std::string_view replaceClose, std::size_t& work) {
    std::string output;
    output.reserve(text.size());
    NextMark closer(text, close, work);
    std::size_t copied = 0;
    for (auto at = findMark(text, open, 0, work); at != None; at = findMark(text, open, copied, work)) {
        const auto inner = at + open.size();
        const auto end = closer.from(inner);
        if (end == None)
            break;
        output.append(text, copied, at - copied).append(replaceOpen);
        output.append(text, inner, end - inner).append(replaceClose);
        copied = end + close.size();
    }
    return output.append(text, copied);
}

std::string processEscapes(std::string text, std::size_t& work) {
    if (findMark(text, "#*", 0, work) != None)
        text = replaceEscapePattern(text, "#*", "*#", "#", "#", work);
    if (findMark(text, "[*", 0, work) != None)
        text = replaceEscapePattern(text, "[*", "*]", "[", "]", work);
    return text;
}

void append(std::optional<std::string>& output, std::string_view between, std::string_view value) {
    if (!output)
        output.emplace();
    output->append(between).append(value);
}

std::optional<std::string> withRest(std::optional<std::string> output, std::string_view rest) {
    if (output)
        output->append(rest);
    return output;
}

} // namespace

std::string VariableExpander::expand(std::string_view text) {
    std::string result(text);
    expandInPlace(result);
    return result;
}

void VariableExpander::expandInPlace(std::string& text) {
    if (!mayNeedExpansion(text))
        return;
    // When the work was spent, that was reported; the texts after it stay as they are.
    if (!isSpent()) {
        const auto outcome = expandToFixedPoint(text);
        work_ += KeepingWork * text.size();
        if (outcome == Outcome::LimitReached || isSpent())
            diagnostics_.warning("Variable expansion reached maximum replacement limit (1000)");
    }
    text = processEscapes(std::move(text), work_);
}

VariableExpander::Outcome VariableExpander::expandToFixedPoint(std::string& text) {
    std::size_t settled = 0;
    for (int passes = 0; passes < MaxReplacements; ++passes) {
        const auto opener = firstOpener(text, settled);
        if (!opener)
            return Outcome::Settled;
        settled = *opener;
        const auto rest = std::string_view(text).substr(settled);
        const auto next = expandOnce(rest);
        const bool isSettled = !next || *next == rest;
        if (!isSettled)
            text.replace(settled, None, *next);
        if (isSpent() || (!isSettled && text.size() > MaxTextSize))
            return Outcome::LimitReached;
        if (isSettled)
            return Outcome::Settled;
    }
    return Outcome::LimitReached;
}

std::optional<std::string> VariableExpander::expandOnce(std::string_view text) {
    work_ += PassWork + text.size();
    auto bracketed = expandNewStyle(text);
    auto expanded = expandOldStyle(bracketed ? *bracketed : text);
    work_ += (bracketed ? bracketed->size() : 0) + (expanded ? expanded->size() : 0);
    return expanded ? std::move(expanded) : std::move(bracketed);
}

std::optional<std::string> VariableExpander::expandNewStyle(std::string_view text) {
    std::optional<std::string> output;
    NextMark closer(text, "]", work_);
    std::size_t copied = 0;
    auto at = findMark(text, "[#", 0, work_);
    while (at != None && !isSpent()) {
        const auto end = closer.from(at + 2);
        if (end == None)
            break;
        const auto* value = lookUp(text.substr(at + 2, end - at - 2));
        if (!value) {
            at = findMark(text, "[#", at + 1, work_);
            continue;
        }
        append(output, text.substr(copied, at - copied), *value);
        copied = end + 1;
        at = output->size() > MaxTextSize ? None : findMark(text, "[#", copied, work_);
    }
    return withRest(std::move(output), text.substr(copied));
}

std::optional<std::string> VariableExpander::expandOldStyle(std::string_view text) {
    std::optional<std::string> output;
    NextMark escapeCloser(text, "*#", work_);
    std::size_t copied = 0;
    auto at = text.find('#');
    while (at != None && at + 1 < text.size() && !isSpent()) {
        if (text[at + 1] == '*') {
            if (const auto end = escapeCloser.from(at + 2); end != None) {
                work_ += SearchWork;
                at = text.find('#', end + 2);
                continue;
            }
        }
        const auto end = text.find('#', at + 1);
        if (end == None)
            break;
        const auto* value = lookUp(text.substr(at + 1, end - at - 1));
        if (!value) {
            at = end;
            continue;
        }
        append(output, text.substr(copied, at - copied), *value);
        copied = end + 1;
        at = output->size() > MaxTextSize ? None : text.find('#', copied);
    }
    return withRest(std::move(output), text.substr(copied));
}

const std::string* VariableExpander::lookUp(std::string_view name) {
    // Many openers before one far closer make long overlapping names, each of which is folded and hashed.
    work_ += LookUpWork + name.size() * (isASCII(name) ? HashWork : FoldingWork);
    if (name.empty() || isSpent())
        return nullptr;
    const auto* value = store_.value(name);
    work_ += value ? value->size() : 0;
    return value;
}

} // namespace Ostrel
