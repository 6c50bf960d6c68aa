#include "OstrelEngine/Measures/Full/SubstituteChain.h"

#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <utility>

namespace Ostrel {

namespace {

constexpr std::size_t MaximumLength = 1 << 20;
constexpr std::size_t MaximumPairs = 10000;

/// Takes quoted texts and separators off the front of an option.
class PairScanner {
public:
    explicit PairScanner(std::string_view text)
        : text_(text) { }

    bool isAtEnd() const { return text_.empty(); }
    void skipTo(char c) { text_.remove_prefix(std::min(text_.find(c), text_.size())); }

    bool consume(char c) {
        text_ = trimmed(text_);
        if (!text_.starts_with(c))
            return false;
        text_.remove_prefix(1);
        return true;
    }

    /// A text between two double or two single quotes.
    std::optional<std::string_view> takeQuoted() {
        text_ = trimmed(text_);
        if (!text_.starts_with('"') && !text_.starts_with('\''))
            return std::nullopt;
        const auto end = text_.find(text_.front(), 1);
        if (end == std::string_view::npos)
            return std::nullopt;
        const auto taken = text_.substr(1, end - 1);
        text_.remove_prefix(end + 1);
        return taken;
    }

private:
    std::string_view text_;
};

std::optional<std::string> replacedPlainly(
    std::string_view text, std::string_view pattern, std::string_view replacement) {
    std::string result;
    for (;;) {
        const auto found = text.find(pattern);
        result.append(text.substr(0, found));
        if (found == std::string_view::npos)
            return result;
        result.append(replacement);
        if (result.size() > MaximumLength)
            return std::nullopt;
        text.remove_prefix(found + pattern.size());
    }
}

} // namespace

std::shared_ptr<const SubstituteChain> SubstituteChain::create(
    std::string_view option, Patterns patterns, std::vector<std::string>& errors) {
    auto chain = std::make_shared<SubstituteChain>();
    for (auto& pair : parse(option)) {
        if (patterns == Patterns::RegularExpressions && !pair.pattern.empty()) {
            std::string error;
            pair.expression = PerlRegularExpression::compile(pair.pattern, &error);
            if (!pair.expression) {
                errors.push_back("RegExpSubstitute: " + pair.pattern + ": " + error);
                continue;
            }
        }
        chain->pairs_.push_back(std::move(pair));
    }
    return chain->pairs_.empty() ? nullptr : chain;
}

std::vector<SubstituteChain::Pair> SubstituteChain::parse(std::string_view option) {
    std::vector<Pair> pairs;
    PairScanner scanner(option);
    while (!scanner.isAtEnd() && pairs.size() < MaximumPairs) {
        if (scanner.consume(','))
            continue;
        const auto pattern = scanner.takeQuoted();
        const auto replacement = pattern && scanner.consume(':') ? scanner.takeQuoted() : std::nullopt;
        if (replacement)
            pairs.push_back({std::string(*pattern), std::string(*replacement), std::nullopt});
        else
            scanner.skipTo(',');
    }
    return pairs;
}

std::string SubstituteChain::apply(std::string_view text) const {
    std::string result(text);
    for (const auto& pair : pairs_) {
        if (auto changed = applyPair(pair, result))
            result = *std::move(changed);
    }
    return result;
}

std::optional<std::string> SubstituteChain::applyPair(const Pair& pair, std::string_view text) {
    if (pair.pattern.empty())
        return text.empty() ? std::optional(pair.replacement) : std::nullopt;
    if (!pair.expression)
        return replacedPlainly(text, pair.pattern, pair.replacement);
    auto result = pair.expression->replaceAll(text, pair.replacement);
    return result.size() <= MaximumLength ? std::optional(std::move(result)) : std::nullopt;
}

} // namespace Ostrel
