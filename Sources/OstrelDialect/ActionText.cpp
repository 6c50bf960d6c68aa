#include "OstrelDialect/ActionText.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/LiteralMarks.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Ostrel {

namespace {

constexpr auto None = std::string_view::npos;
constexpr std::size_t MaximumLength = 1 << 20;
constexpr std::size_t MaximumSteps = 10000;
constexpr std::size_t MaximumArguments = 1000;
constexpr int MaximumWrappers = 16;
constexpr std::string_view TripleQuote = "\"\"\"";

constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

std::string_view trimmedBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// The quotes of a text, each with its end. Remembers that none is left, so that many lone quotes cost one search.
class Quotes {
public:
    explicit Quotes(std::string_view text)
        : text_(text) { }

    /// What stands in the quotes that open at `at`, and the place behind them.
    struct Quoted {
        std::string_view inside;
        std::size_t end = 0;
        bool isTriple = false;
    };
    /// Without a closing quote, `end` is `at`.
    Quoted at(std::size_t at) {
        if (text_.substr(at, TripleQuote.size()) == TripleQuote && hasTriple_) {
            auto close = find(TripleQuote, at + TripleQuote.size());
            if (close != None) {
                // A quote that ends the text inside stands before the three.
                while (close + TripleQuote.size() < text_.size() && text_[close + TripleQuote.size()] == '"')
                    ++close;
                const auto begin = at + TripleQuote.size();
                return {text_.substr(begin, close - begin), close + TripleQuote.size(), true};
            }
            hasTriple_ = false;
        }
        const auto close = hasSingle_ ? find("\"", at + 1) : None;
        hasSingle_ = close != None;
        if (close == None)
            return {{}, at, false};
        return {text_.substr(at + 1, close - at - 1), close + 1, false};
    }

private:
    /// Quotes inside literals are text.
    std::size_t find(std::string_view quote, std::size_t from) const {
        for (auto at = text_.find_first_of("\"\xEF", from); at != None; at = text_.find_first_of("\"\xEF", at)) {
            if (text_[at] == LiteralMarks::Lead)
                at = std::max(LiteralMarks::regionEnd(text_, at), at + 1);
            else if (text_.substr(at, quote.size()) == quote)
                return at;
            else
                ++at;
        }
        return None;
    }

    std::string_view text_;
    bool hasTriple_ = true;
    bool hasSingle_ = true;
};

/// The place behind a quoted text or literal that begins at `at`, else `at`.
std::size_t opaqueEnd(std::string_view text, std::size_t at, Quotes& quotes) {
    if (text[at] == '"')
        return quotes.at(at).end;
    return text[at] == LiteralMarks::Lead ? LiteralMarks::regionEnd(text, at) : at;
}

/// Where the bracket closes that opens at `at`; `None` when it does not.
std::size_t closingBracket(std::string_view text, std::size_t at, Quotes& quotes) {
    std::size_t depth = 0;
    while (at < text.size()) {
        if (const auto end = opaqueEnd(text, at, quotes); end != at) {
            at = end;
            continue;
        }
        if (text[at] == '[')
            ++depth;
        else if (text[at] == ']' && --depth == 0)
            return at;
        ++at;
    }
    return None;
}

/// The places of the brackets that something closes, in order: one that nothing closes groups nothing.
std::vector<std::size_t> closedBrackets(std::string_view text) {
    std::vector<std::size_t> closed;
    std::vector<std::size_t> open;
    Quotes quotes(text);
    for (std::size_t at = text.find('['); at < text.size();) {
        if (const auto end = opaqueEnd(text, at, quotes); end != at) {
            at = end;
            continue;
        }
        if (text[at] == '[') {
            open.push_back(at);
        } else if (text[at] == ']' && !open.empty()) {
            closed.push_back(open.back());
            open.pop_back();
        }
        ++at;
    }
    std::ranges::sort(closed);
    return closed;
}

/// The words of a step; `firstEnd` is where the first one ends.
std::vector<ActionArgument> splitWords(std::string_view text, std::size_t& firstEnd) {
    std::vector<ActionArgument> words;
    Quotes quotes(text);
    const auto closed = closedBrackets(text);
    std::size_t at = 0;
    while (words.size() <= MaximumArguments) {
        while (at < text.size() && isBlank(text[at]))
            ++at;
        if (at == text.size())
            break;
        ActionArgument word;
        const auto begin = at;
        std::size_t depth = 0;
        while (at < text.size() && (depth > 0 || !isBlank(text[at]))) {
            const char c = text[at];
            if (c == '"' && depth == 0) {
                if (const auto quoted = quotes.at(at); quoted.end != at) {
                    word.text += quoted.inside;
                    word.isLiteral = quoted.isTriple && at == begin;
                    at = quoted.end;
                    continue;
                }
            } else if (const auto end = opaqueEnd(text, at, quotes); end != at) {
                // Quotes inside brackets belong to a call's arguments.
                word.text.append(text, at, end - at);
                at = end;
                continue;
            }
            if (c == '[' && (depth > 0 || std::ranges::binary_search(closed, at)))
                ++depth;
            else if (c == ']' && depth > 0)
                --depth;
            word.text += c;
            ++at;
        }
        if (words.empty())
            firstEnd = at;
        words.push_back(std::move(word));
    }
    return words;
}

bool isSound(std::string_view word) {
    return equalsIgnoringCase(word, "PLAY") || equalsIgnoringCase(word, "PLAYLOOP")
        || equalsIgnoringCase(word, "PLAYSTOP");
}

void appendSteps(std::vector<ActionTextStep>& steps, std::string_view text, int wrappers);

void appendStep(std::vector<ActionTextStep>& steps, std::string_view text, int wrappers) {
    constexpr std::string_view OldPrefix = "RAINMETER";
    text = trimmedBlanks(text);
    ActionTextStep step;
    step.text = text;
    std::size_t firstEnd = 0;
    auto words = splitWords(text, firstEnd);
    if (words.empty()) {
        steps.push_back(std::move(step));
        return;
    }
    std::string first = std::move(words.front().text);
    words.erase(words.begin());
    if (first.starts_with('!')) {
        first.erase(0, 1);
        if (first.size() > OldPrefix.size() && hasPrefixIgnoringCase(first, OldPrefix))
            first.erase(0, OldPrefix.size());
        if (equalsIgnoringCase(first, "EXECUTE")) {
            if (wrappers < MaximumWrappers)
                appendSteps(steps, text.substr(firstEnd), wrappers + 1);
            return;
        }
        step.kind = ActionTextStep::Kind::Bang;
    } else {
        step.kind = isSound(first) ? ActionTextStep::Kind::Sound : ActionTextStep::Kind::Open;
    }
    step.name = std::move(first);
    step.arguments = std::move(words);
    steps.push_back(std::move(step));
}

/// A step in brackets, which may be a reference instead of what it looks like.
void appendBracket(std::vector<ActionTextStep>& steps, std::string_view inner, int wrappers) {
    const char first = inner.empty() ? '\0' : inner.front();
    if (first == '#' && inner.size() > 1) {
        steps.push_back({ActionTextStep::Kind::Variable, std::string(inner.substr(1)), {}, std::string(inner)});
    } else if (first == '&' || first == '$' || (first == '\\' && !inner.starts_with("\\\\"))) {
        steps.push_back({ActionTextStep::Kind::Open, "[" + std::string(inner) + "]", {}, std::string(inner)});
    } else {
        appendStep(steps, inner, wrappers);
    }
}

void appendSteps(std::vector<ActionTextStep>& steps, std::string_view text, int wrappers) {
    text = trimmedBlanks(text);
    if (text.empty())
        return;
    if (text.front() != '[') {
        appendStep(steps, text, wrappers);
        return;
    }
    Quotes quotes(text);
    // What stands between two steps in brackets is no step.
    for (auto at = text.find('['); at != None && steps.size() < MaximumSteps; at = text.find('[', at)) {
        const auto close = closingBracket(text, at, quotes);
        const auto end = std::min(close, text.size());
        appendBracket(steps, text.substr(at + 1, end - at - 1), wrappers);
        at = std::min(end + 1, text.size());
    }
}

} // namespace

std::vector<ActionTextStep> parseActionText(std::string_view text) {
    std::vector<ActionTextStep> steps;
    if (text.size() <= MaximumLength)
        appendSteps(steps, text, 0);
    return steps;
}

} // namespace Ostrel
