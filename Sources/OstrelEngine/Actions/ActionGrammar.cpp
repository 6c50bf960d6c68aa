#include "OstrelEngine/Actions/ActionGrammar.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>

namespace Ostrel::ActionGrammar {

namespace {

constexpr std::string_view ExecuteWrapper = "!EXECUTE";
constexpr std::string_view OpenExecuteWrapper = "[!EXECUTE";

bool isQuote(char c) {
    return c == '"' || c == '\'';
}

/// Where the first run of whitespace begins, or the length of the text.
std::size_t wordLength(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const auto c = decodeCharacter(text, i);
        if (isWhitespace(c.value))
            break;
        i += c.length;
    }
    return i;
}

std::string_view withoutLeadingWhitespace(std::string_view text) {
    while (!text.empty()) {
        const auto c = decodeCharacter(text, 0);
        if (!isWhitespace(c.value))
            break;
        text.remove_prefix(c.length);
    }
    return text;
}

/// Compares a head of known length, so that a long text is never upper-cased for it.
bool beginsWith(std::string_view text, std::string_view asciiUpper) {
    return hasPrefixIgnoringCase(text.substr(0, asciiUpper.size()), asciiUpper);
}

/// Turns the pieces between brackets and line feeds into commands.
class CommandCollector {
public:
    void add(std::string_view piece) {
        for (;;) {
            piece = withoutSurplusBrackets(withoutBrackets(trimmed(piece)));
            if (piece.empty())
                return;
            if (beginsWith(piece, ExecuteWrapper)) {
                piece.remove_prefix(ExecuteWrapper.size());
            } else if (beginsWith(piece, OpenExecuteWrapper)) {
                // Cut from its commands by the splitting: its closing bracket stands after the last of them.
                ++openWrappers_;
                piece.remove_prefix(OpenExecuteWrapper.size());
            } else {
                break;
            }
        }
        append(piece);
    }

    std::vector<ParsedActionCommand> take() { return std::move(commands_); }

private:
    static std::string_view withoutBrackets(std::string_view piece) {
        if (piece.size() >= 2 && piece.front() == '[' && piece.back() == ']')
            return trimmed(piece.substr(1, piece.size() - 2));
        return piece;
    }

    std::string_view withoutSurplusBrackets(std::string_view piece) {
        if (openWrappers_ == 0 || !piece.ends_with(']'))
            return piece;
        const auto opening = std::count(piece.begin(), piece.end(), '[');
        auto surplus = std::count(piece.begin(), piece.end(), ']') - opening;
        while (openWrappers_ > 0 && surplus > 0 && piece.ends_with(']')) {
            --openWrappers_;
            --surplus;
            piece = trimmed(piece.substr(0, piece.size() - 1));
        }
        return piece;
    }

    void append(std::string_view piece) {
        if (piece.front() != '!') {
            commands_.push_back({ParsedActionCommand::Kind::raw, {}, std::string(piece)});
            return;
        }
        piece.remove_prefix(1);
        const auto length = wordLength(piece);
        if (length == 0)
            return;
        commands_.push_back({ParsedActionCommand::Kind::bang, upperCased(piece.substr(0, length)),
            std::string(trimmed(piece.substr(length)))});
    }

    std::vector<ParsedActionCommand> commands_;
    std::size_t openWrappers_ = 0;
};

/// Whether a piece begins at this bracket: after a closing one, or where a bang follows.
bool beginsPiece(std::string_view text, std::size_t at) {
    if (text[at] != '[')
        return false;
    return (at > 0 && text[at - 1] == ']') || (at + 1 < text.size() && text[at + 1] == '!');
}

} // namespace

std::vector<ParsedActionCommand> parseCommands(std::string_view text) {
    CommandCollector collector;
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isLineFeed = text[i] == '\n';
        if (!isLineFeed && !beginsPiece(text, i))
            continue;
        collector.add(text.substr(start, i - start));
        start = isLineFeed ? i + 1 : i;
    }
    collector.add(text.substr(start));
    return collector.take();
}

std::vector<std::string_view> tokenizeArguments(std::string_view text) {
    std::vector<std::string_view> tokens;
    for (;;) {
        text = withoutLeadingWhitespace(text);
        if (text.empty())
            return tokens;
        if (isQuote(text.front())) {
            const auto end = text.find(text.front(), 1);
            tokens.push_back(text.substr(1, end == std::string_view::npos ? end : end - 1));
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        } else {
            const auto length = std::min(wordLength(text), text.find_first_of("\"'"));
            tokens.push_back(text.substr(0, length));
            text.remove_prefix(length);
        }
    }
}

std::optional<std::string_view> firstArgument(std::string_view text) {
    const auto tokens = tokenizeArguments(text);
    return tokens.empty() ? std::nullopt : std::optional(tokens.front());
}

TwoArguments parseTwoArguments(std::string_view text) {
    text = trimmed(text);
    if (text.empty())
        return {};
    std::string_view first;
    std::string_view rest;
    const auto closing = isQuote(text.front()) ? text.find(text.front(), 1) : std::string_view::npos;
    if (closing != std::string_view::npos) {
        first = text.substr(1, closing - 1);
        rest = trimmed(text.substr(closing + 1));
    } else {
        const auto length = wordLength(text);
        first = trimmed(text.substr(0, length));
        rest = trimmed(text.substr(length));
    }
    return {first, rest.empty() ? std::nullopt : std::optional(rest)};
}

std::string_view stripQuotes(std::string_view text) {
    text = trimmed(text);
    if (text.size() >= 2 && isQuote(text.front()) && text.back() == text.front())
        return text.substr(1, text.size() - 2);
    return text;
}

} // namespace Ostrel::ActionGrammar
