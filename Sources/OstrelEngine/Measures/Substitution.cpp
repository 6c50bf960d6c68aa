#include "OstrelEngine/Measures/Substitution.h"

#include "OstrelCore/Text/Text.h"

#include <utility>

namespace Ostrel {

namespace {

/// A pair that would make a text longer than this does not act: measures feed each other, and texts that double on
/// every tick would eat the machine.
constexpr std::size_t MaximumLength = 1 << 20;

/// `\1`, as skins write a group, becomes `$1`. A dollar that is there already keeps its meaning.
std::string convertBackreferences(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isReference
            = text[i] == '\\' && i + 1 < text.size() && isNumeric(decodeCharacter(text, i + 1).value);
        result.push_back(isReference ? '$' : text[i]);
    }
    return result;
}

std::optional<std::string> replacedPlainly(
    std::string_view text, std::string_view pattern, std::string_view replacement) {
    if (pattern.empty())
        return std::nullopt;
    std::size_t count = 0;
    for (auto at = text.find(pattern); at != std::string_view::npos; at = text.find(pattern, at + pattern.size()))
        ++count;
    if (count == 0 || text.size() - count * pattern.size() + count * replacement.size() > MaximumLength)
        return std::nullopt;
    return replacingOccurrences(text, pattern, replacement);
}

/// A cursor over the text of the option.
class PairScanner {
public:
    explicit PairScanner(std::string_view text)
        : text_(text) { }

    bool isAtEnd() const { return text_.empty(); }
    void skipBlanks() {
        while (!text_.empty()) {
            const auto c = decodeCharacter(text_, 0);
            if (!isWhitespace(c.value) && !isNewline(c.value))
                return;
            text_.remove_prefix(c.length);
        }
    }
    bool consume(char c) {
        if (!text_.starts_with(c))
            return false;
        text_.remove_prefix(1);
        return true;
    }
    /// What stands before the next `c`, or all the rest.
    std::string_view takeUpTo(char c) {
        const auto taken = text_.substr(0, text_.find(c));
        text_.remove_prefix(taken.size());
        return taken;
    }

private:
    std::string_view text_;
};

} // namespace

Substitution::Substitution(std::vector<Pair> pairs, Mode mode)
    : pairs_(std::move(pairs))
    , mode_(mode) {
    if (mode == Mode::Plain)
        return;
    for (auto& pair : pairs_) {
        pair.replacement = convertBackreferences(pair.replacement);
        pair.expression = RegularExpression::compile(pair.pattern);
    }
}

std::unique_ptr<Substitution> Substitution::create(std::string_view text, Mode mode) {
    auto pairs = parse(text);
    return pairs.empty() ? nullptr : std::unique_ptr<Substitution>(new Substitution(std::move(pairs), mode));
}

std::vector<Substitution::Pair> Substitution::parse(std::string_view text) {
    std::vector<Pair> pairs;
    PairScanner scanner(text);
    for (;;) {
        scanner.skipBlanks();
        if (scanner.consume(','))
            continue;
        if (scanner.isAtEnd())
            return pairs;
        if (!scanner.consume('"')) {
            scanner.takeUpTo(',');
            continue;
        }
        const auto pattern = scanner.takeUpTo('"');
        if (!scanner.consume('"'))
            return pairs;
        scanner.skipBlanks();
        if (!scanner.consume(':'))
            continue;
        scanner.skipBlanks();
        if (!scanner.consume('"'))
            continue;
        const auto replacement = scanner.takeUpTo('"');
        scanner.consume('"');
        pairs.push_back({std::string(pattern), std::string(replacement), std::nullopt});
    }
}

const std::string& Substitution::apply(std::string_view text) {
    if (lastInput_ != text) {
        lastOutput_ = firstChange(text);
        lastInput_ = text;
    }
    return lastOutput_;
}

std::string Substitution::firstChange(std::string_view text) const {
    for (const auto& pair : pairs_) {
        auto changed = applyPair(pair, text);
        if (changed && *changed != text)
            return *std::move(changed);
    }
    return std::string(text);
}

std::optional<std::string> Substitution::applyPair(const Pair& pair, std::string_view text) const {
    if (mode_ == Mode::Plain)
        return replacedPlainly(text, pair.pattern, pair.replacement);
    return pair.expression ? pair.expression->replacingMatches(text, pair.replacement, MaximumLength) : std::nullopt;
}

} // namespace Ostrel
