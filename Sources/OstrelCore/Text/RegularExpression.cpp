#include "OstrelCore/Text/RegularExpression.h"

#include "OstrelCore/Text/Text.h"

#include <unicode/regex.h>
#include <unicode/utext.h>

#include <utility>

namespace Ostrel {

namespace {

/// ICU's own units, some 0.2 ms each: generous for the short texts of a skin, unnoticed on a tick.
constexpr int32_t TimeLimit = 200;
constexpr int32_t StackLimitBytes = 2 << 20;

/// Digits that a group reference takes at most: as many as the highest group has.
std::size_t referenceDigits(std::size_t groupCount) {
    std::size_t digits = 1;
    for (std::size_t order = 10; order < groupCount; order *= 10)
        ++digits;
    return digits;
}

void appendExpanded(std::string& result, std::string_view replacementTemplate, const RegularExpression::Match& match) {
    const auto maximumDigits = referenceDigits(match.size());
    for (std::size_t i = 0; i < replacementTemplate.size();) {
        const char c = replacementTemplate[i++];
        if (c == '\\') {
            if (i < replacementTemplate.size())
                result.push_back(replacementTemplate[i++]);
            continue;
        }
        const auto start = i;
        std::size_t group = 0;
        while (c == '$' && i < replacementTemplate.size() && i - start < maximumDigits
            && isASCIIDigit(replacementTemplate[i]))
            group = group * 10 + static_cast<std::size_t>(replacementTemplate[i++] - '0');
        if (i == start)
            result.push_back(c);
        else if (group < match.size())
            result.append(match[group]);
    }
}

} // namespace

struct RegularExpression::State {
    std::unique_ptr<icu::RegexMatcher> matcher;

    /// Calls `visit` with each match until it returns false; gives false when a limit was hit.
    template <typename Visit> bool forEachMatch(std::string_view text, Visit visit) const {
        UErrorCode error = U_ZERO_ERROR;
        UText input = UTEXT_INITIALIZER;
        utext_openUTF8(&input, text.data(), static_cast<int64_t>(text.size()), &error);
        matcher->reset(&input);
        while (U_SUCCESS(error) && matcher->find(error)) {
            if (!visit(groups(text)))
                break;
        }
        utext_close(&input);
        return U_SUCCESS(error);
    }

    Match groups(std::string_view text) const {
        Match match;
        UErrorCode error = U_ZERO_ERROR;
        for (int32_t i = 0; i <= matcher->groupCount(); ++i) {
            const auto start = matcher->start64(i, error);
            const auto end = matcher->end64(i, error);
            if (U_FAILURE(error) || start < 0)
                match.emplace_back();
            else
                match.push_back(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
        }
        return match;
    }
};

RegularExpression::RegularExpression(std::unique_ptr<State> state)
    : state_(std::move(state)) { }
RegularExpression::RegularExpression(RegularExpression&&) noexcept = default;
RegularExpression& RegularExpression::operator=(RegularExpression&&) noexcept = default;
RegularExpression::~RegularExpression() = default;

std::optional<RegularExpression> RegularExpression::compile(std::string_view pattern) {
    if (pattern.empty())
        return std::nullopt;
    UErrorCode error = U_ZERO_ERROR;
    const auto source = icu::UnicodeString::fromUTF8({pattern.data(), static_cast<int32_t>(pattern.size())});
    auto matcher = std::make_unique<icu::RegexMatcher>(source, 0, error);
    matcher->setTimeLimit(TimeLimit, error);
    matcher->setStackLimit(StackLimitBytes, error);
    if (U_FAILURE(error))
        return std::nullopt;
    return RegularExpression(std::make_unique<State>(State{std::move(matcher)}));
}

bool RegularExpression::hasMatch(std::string_view text) const {
    bool found = false;
    state_->forEachMatch(text, [&](const Match&) {
        found = true;
        return false;
    });
    return found;
}

std::vector<RegularExpression::Match> RegularExpression::matches(std::string_view text) const {
    std::vector<Match> found;
    const bool finished = state_->forEachMatch(text, [&](Match match) {
        found.push_back(std::move(match));
        return true;
    });
    if (!finished)
        found.clear();
    return found;
}

std::optional<std::string> RegularExpression::replacingMatches(
    std::string_view text, std::string_view replacementTemplate, std::size_t maximumLength) const {
    std::string result;
    const char* copied = text.data();
    const bool finished = state_->forEachMatch(text, [&](const Match& match) {
        result.append(copied, match[0].data());
        appendExpanded(result, replacementTemplate, match);
        copied = match[0].data() + match[0].size();
        return result.size() <= maximumLength;
    });
    if (!finished)
        return std::string(text);
    result.append(copied, text.data() + text.size());
    return result.size() <= maximumLength ? std::optional(std::move(result)) : std::nullopt;
}

} // namespace Ostrel
