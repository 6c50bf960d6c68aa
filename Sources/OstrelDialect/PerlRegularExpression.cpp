#include "OstrelDialect/PerlRegularExpression.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <array>
#include <cstdint>
#include <utility>

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

namespace Ostrel {

namespace {

constexpr std::size_t MaximumPatternLength = 65536;
constexpr std::uint32_t MatchLimit = 5000000;
constexpr std::uint32_t DepthLimit = 100000;
constexpr std::uint32_t HeapLimitKibibytes = 65536;
constexpr std::size_t MaximumResult = 16 << 20;

template <auto Free> struct Freed {
    template <typename T> void operator()(T* pointer) const { Free(pointer); }
};
using Code = std::unique_ptr<pcre2_code, Freed<pcre2_code_free>>;
using CompileContext = std::unique_ptr<pcre2_compile_context, Freed<pcre2_compile_context_free>>;
using MatchContext = std::unique_ptr<pcre2_match_context, Freed<pcre2_match_context_free>>;
using MatchData = std::unique_ptr<pcre2_match_data, Freed<pcre2_match_data_free>>;

PCRE2_SPTR units(std::string_view text) {
    return reinterpret_cast<PCRE2_SPTR>(text.data() ? text.data() : "");
}

std::string messageOf(int error, std::size_t offset) {
    std::array<PCRE2_UCHAR, 256> message{};
    pcre2_get_error_message(error, message.data(), message.size());
    return std::string(reinterpret_cast<const char*>(message.data())) + " at "
        + formatInteger(static_cast<std::int64_t>(offset));
}

/// The replacement for one match put at the end of `result`.
void appendReplacement(std::string& result, std::string_view replacement, std::string_view subject,
    const PerlRegularExpression::Groups& groups) {
    std::size_t copied = 0;
    for (auto at = replacement.find('\\'); at != std::string_view::npos; at = replacement.find('\\', at)) {
        std::size_t end = at + 1;
        if (end >= replacement.size() || !isASCIIDigit(replacement[end])) {
            ++at;
            continue;
        }
        auto group = static_cast<std::size_t>(replacement[end++] - '0');
        if (end < replacement.size() && isASCIIDigit(replacement[end]) && group != 0) {
            const auto wide = group * 10 + static_cast<std::size_t>(replacement[end] - '0');
            if (wide < groups.size()) {
                group = wide;
                ++end;
            }
        }
        result.append(replacement, copied, at - copied);
        if (group < groups.size() && groups[group])
            result.append(subject, groups[group]->begin, groups[group]->end - groups[group]->begin);
        copied = at = end;
    }
    result.append(replacement, copied);
}

} // namespace

struct PerlRegularExpression::Compiled {
    Code code;
    MatchContext context;
    MatchData data;
    std::uint32_t groupCount = 0;

    /// The number of groups that the library set, or an error below 0.
    int run(std::string_view subject, std::size_t from, std::uint32_t options) const {
        const auto once = [&](std::uint32_t moreOptions) {
            return pcre2_match(
                code.get(), units(subject), subject.size(), from, options | moreOptions, data.get(), context.get());
        };
        const int result = once(0);
        // The interpreter keeps its state in the heap.
        return result == PCRE2_ERROR_JIT_STACKLIMIT ? once(PCRE2_NO_JIT) : result;
    }

    std::optional<Groups> match(std::string_view subject, std::size_t from, std::uint32_t options) const {
        if (from > subject.size() || run(subject, from, options) < 0)
            return std::nullopt;
        const auto* const offsets = pcre2_get_ovector_pointer(data.get());
        Groups groups(groupCount + 1);
        for (std::size_t i = 0; i < groups.size(); ++i) {
            // `\K` can put the begin of a match behind its end.
            if (offsets[2 * i] != PCRE2_UNSET && offsets[2 * i] <= offsets[2 * i + 1])
                groups[i] = Span{offsets[2 * i], offsets[2 * i + 1]};
        }
        return groups[0] ? std::optional(std::move(groups)) : std::nullopt;
    }

    /// Calls `take(groups)` for each match until it returns false.
    template <typename Take> void eachMatch(std::string_view subject, Take take) const {
        std::size_t from = 0;
        std::uint32_t options = 0;
        while (from <= subject.size()) {
            const auto groups = match(subject, from, options);
            if (!groups)
                return;
            if (!take(*groups))
                return;
            const auto found = *(*groups)[0];
            // An anchor as well would keep the pattern from its compiled code, and the library would check the whole
            // rest of the text again for each match.
            options = found.begin == found.end ? PCRE2_NOTEMPTY_ATSTART : 0;
            from = found.end;
        }
    }
};

PerlRegularExpression::PerlRegularExpression(std::unique_ptr<Compiled> compiled)
    : compiled_(std::move(compiled)) { }
PerlRegularExpression::PerlRegularExpression(PerlRegularExpression&&) noexcept = default;
PerlRegularExpression& PerlRegularExpression::operator=(PerlRegularExpression&&) noexcept = default;
PerlRegularExpression::~PerlRegularExpression() = default;

std::optional<PerlRegularExpression> PerlRegularExpression::compile(std::string_view pattern, std::string* error) {
    const CompileContext context(pcre2_compile_context_create(nullptr));
    pcre2_set_max_pattern_length(context.get(), MaximumPatternLength);
    pcre2_set_newline(context.get(), PCRE2_NEWLINE_LF);
    int code = 0;
    std::size_t offset = 0;
    auto compiled = std::make_unique<Compiled>();
    compiled->code.reset(pcre2_compile(units(pattern), pattern.size(),
        PCRE2_UTF | PCRE2_MATCH_INVALID_UTF | PCRE2_NEVER_BACKSLASH_C, &code, &offset, context.get()));
    if (!compiled->code) {
        if (error)
            *error = messageOf(code, offset);
        return std::nullopt;
    }
    // Without JIT the interpreter does it.
    static_cast<void>(pcre2_jit_compile(compiled->code.get(), PCRE2_JIT_COMPLETE));
    compiled->context.reset(pcre2_match_context_create(nullptr));
    pcre2_set_match_limit(compiled->context.get(), MatchLimit);
    pcre2_set_depth_limit(compiled->context.get(), DepthLimit);
    pcre2_set_heap_limit(compiled->context.get(), HeapLimitKibibytes);
    compiled->data.reset(pcre2_match_data_create_from_pattern(compiled->code.get(), nullptr));
    pcre2_pattern_info(compiled->code.get(), PCRE2_INFO_CAPTURECOUNT, &compiled->groupCount);
    return PerlRegularExpression(std::move(compiled));
}

bool PerlRegularExpression::matches(std::string_view subject) const {
    return compiled_->run(subject, 0, 0) >= 0;
}

std::optional<PerlRegularExpression::Groups> PerlRegularExpression::match(
    std::string_view subject, std::size_t from) const {
    return compiled_->match(subject, from, 0);
}

std::vector<PerlRegularExpression::Groups> PerlRegularExpression::allMatches(
    std::string_view subject, std::size_t limit) const {
    std::vector<Groups> matches;
    if (limit == 0)
        return matches;
    compiled_->eachMatch(subject, [&](const Groups& groups) {
        matches.push_back(groups);
        return matches.size() < limit;
    });
    return matches;
}

std::string PerlRegularExpression::replaceAll(std::string_view subject, std::string_view replacement) const {
    std::string result;
    std::size_t copied = 0;
    compiled_->eachMatch(subject, [&](const Groups& groups) {
        // `\K` can also put a match before the end of the former one.
        if (groups[0]->begin < copied)
            return true;
        const auto size = result.size();
        result.append(subject, copied, groups[0]->begin - copied);
        const auto before = result.size();
        appendReplacement(result, replacement, subject, groups);
        if (result.size() > MaximumResult && result.size() - before > groups[0]->end - groups[0]->begin) {
            result.resize(size);
            return false;
        }
        copied = groups[0]->end;
        return true;
    });
    return result.append(subject, copied);
}

} // namespace Ostrel
