#include "OstrelDialect/ReferenceResolver.h"

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/LiteralMarks.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Ostrel {

namespace {

constexpr auto None = std::string_view::npos;
constexpr int MaximumRounds = 1000;
constexpr std::size_t MaximumNesting = 1000;
constexpr std::size_t MaximumName = 256;
/// A reference whose value would make its text longer stays as written.
constexpr std::size_t MaximumLength = 1 << 20;
/// Bytes that one resolution may read and write besides the text itself.
constexpr std::size_t MaximumWork = 16 << 20;
/// What one look-up costs at least.
constexpr std::size_t LookUpWork = 64;

constexpr std::array<bool, 256> characterTable(std::string_view characters) {
    std::array<bool, 256> table{};
    for (const char c : characters)
        table[static_cast<unsigned char>(c)] = true;
    return table;
}

constexpr auto SignStarts = characterTable("#%$\xEF");
constexpr auto ValueStarts = characterTable("#%$[\xEF");
constexpr auto BracketStarts = characterTable("[]\xEF");
constexpr auto EscapeStarts = characterTable("#[\xEF");
constexpr auto QuoteStarts = characterTable("'\"(),\xEF");
constexpr auto EventNames = characterTable("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_:%");
constexpr auto EnvironmentNames = characterTable("0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_()");

bool contains(const std::array<bool, 256>& table, char c) {
    return table[static_cast<unsigned char>(c)];
}

std::size_t findFrom(std::string_view text, std::size_t at, const std::array<bool, 256>& table) {
    while (at < text.size() && !contains(table, text[at]))
        ++at;
    return at;
}

bool isMadeOf(std::string_view text, const std::array<bool, 256>& table) {
    return !text.empty() && std::ranges::all_of(text, [&](char c) { return contains(table, c); });
}

bool isStarred(std::string_view name) {
    return name.size() > 2 && name.front() == '*' && name.back() == '*';
}

bool hasMarks(std::string_view text) {
    return text.find(LiteralMarks::Lead) != None && text.find(LiteralMarks::Open) != None;
}

std::string nameOf(std::string_view text) {
    return hasMarks(text) ? LiteralMarks::dropped(text) : std::string(text);
}

/// The first `c` outside literals.
std::size_t findUnmarked(std::string_view text, char c) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == c)
            return at;
        if (text[at] == LiteralMarks::Lead)
            at = std::max(LiteralMarks::regionEnd(text, at), at + 1) - 1;
    }
    return None;
}

/// Where the quotes and parentheses that open in a call's text stand. `comma(at)` is called for each comma that
/// separates arguments, `close(at)` for the parenthesis that ends them.
template <typename Comma> std::size_t callEnd(std::string_view text, std::size_t at, Comma comma) {
    std::size_t depth = 0;
    for (; at < text.size(); ++at) {
        at = findFrom(text, at, QuoteStarts);
        if (at == text.size())
            break;
        const char c = text[at];
        if (c == LiteralMarks::Lead) {
            at = std::max(LiteralMarks::regionEnd(text, at), at + 1) - 1;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')') {
            if (depth == 0)
                return at;
            --depth;
        } else if (c == ',') {
            if (depth == 0)
                comma(at);
        } else {
            // A quote; what stands in a literal does not end it.
            for (++at; at < text.size() && text[at] != c; ++at) {
                if (text[at] == LiteralMarks::Lead)
                    at = std::max(LiteralMarks::regionEnd(text, at), at + 1) - 1;
            }
        }
    }
    return None;
}

/// Where the arguments of `&Script:Function(` begin, as far as `inner` is written; absent when it is no call.
std::optional<std::size_t> callArguments(std::string_view inner) {
    if (!inner.starts_with('&'))
        return std::nullopt;
    const auto paren = inner.substr(0, 2 * MaximumName).find('(');
    const auto colon = inner.substr(0, MaximumName).find(':');
    return paren == None || colon == None || colon > paren ? std::nullopt : std::optional(paren + 1);
}

/// The number of a character, `9762` or `x2622`.
std::optional<char32_t> characterNumber(std::string_view text) {
    constexpr char32_t Highest = 65536;
    constexpr char32_t HighestHexadecimal = 0xFFFE;
    const bool isHexadecimal = text.starts_with('x') || text.starts_with('X');
    if (isHexadecimal)
        text.remove_prefix(1);
    if (text.empty() || text.size() > 16)
        return std::nullopt;
    const char32_t base = isHexadecimal ? 16 : 10;
    char32_t value = 0;
    for (const char c : text) {
        const char upper = asciiUpper(c);
        const char32_t digit = isASCIIDigit(c) ? static_cast<char32_t>(c - '0')
            : upper >= 'A' && upper <= 'F'     ? static_cast<char32_t>(upper - 'A' + 10)
                                               : base;
        value = value * base + digit;
        if (digit >= base || value > Highest)
            return std::nullopt;
    }
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value == 0 || isSurrogate || (isHexadecimal && value > HighestHexadecimal))
        return std::nullopt;
    return value;
}

/// The length of an escape that begins here with its prefix (`#*`, `[*`, `[#*`, `[&*`, `[$*`), which is put in
/// `prefix`; 0 when there is none.
std::size_t escapeLength(std::string_view text, std::size_t& prefix) {
    const bool isSign = text.front() == '#';
    prefix = !isSign && text.size() > 1 && std::string_view("#&$").find(text[1]) != None ? 2 : 1;
    if (text.size() <= prefix || text[prefix] != '*')
        return 0;
    const auto end = isSign ? text.find('#', 1) : text.find_first_of("[]", prefix);
    if (end == None || text[end] == '[' || end < prefix + 3 || text[end - 1] != '*')
        return 0;
    return end + 1;
}

/// The text without the stars of escapes and, where they are not kept, without the marks of literals.
std::string finished(std::string_view text, bool keepMarks) {
    std::string result;
    result.reserve(text.size());
    std::size_t copied = 0;
    for (auto at = findFrom(text, 0, EscapeStarts); at < text.size(); at = findFrom(text, at, EscapeStarts)) {
        if (text[at] == LiteralMarks::Lead) {
            // A mark that closes nothing goes too.
            const bool isStray = LiteralMarks::isAt(text, at, LiteralMarks::Close);
            const auto end = isStray ? at + LiteralMarks::Close.size() : LiteralMarks::regionEnd(text, at);
            if (end == at) {
                ++at;
                continue;
            }
            result.append(text, copied, at - copied);
            const auto region = text.substr(at, end - at);
            result += keepMarks ? std::string(region) : LiteralMarks::dropped(region);
            copied = at = end;
            continue;
        }
        std::size_t prefix = 0;
        const auto length = escapeLength(text.substr(at), prefix);
        if (length == 0) {
            ++at;
            continue;
        }
        result.append(text, copied, at + prefix - copied);
        result.append(text, at + prefix + 1, length - prefix - 3);
        copied = at + length - 1;
        at += length;
    }
    return result.append(text, copied);
}

} // namespace

ReferenceResolver::ReferenceResolver(
    const ReferenceScope& scope, std::string_view currentSection, ReferenceKinds kinds, ReferenceInputs* inputs)
    : scope_(scope)
    , currentSection_(currentSection)
    , kinds_(kinds)
    , inputs_(inputs)
    , work_(MaximumWork) { }

std::string ReferenceResolver::resolve(std::string_view raw) {
    work_ += raw.size();
    std::string text = withSigns(raw);
    if (text.find('[') != std::string::npos) {
        text = withBrackets(text, Pass::Sigils);
        if (wants(ReferenceKinds::Sections) && text.find('[') != std::string::npos)
            text = withBrackets(text, Pass::Sections);
    }
    if (!wants(ReferenceKinds::Escapes) || findFrom(text, 0, EscapeStarts) == text.size())
        return text;
    return finished(text, wants(ReferenceKinds::Marks));
}

bool ReferenceResolver::spend(std::size_t bytes) {
    if (bytes > work_)
        return false;
    work_ -= bytes;
    return true;
}

std::string ReferenceResolver::withSigns(std::string_view text) {
    auto former = signRound(text);
    if (!former)
        return std::string(text);
    for (int round = 1; round < MaximumRounds; ++round) {
        auto next = signRound(*former);
        if (!next)
            return std::move(*former);
        former = std::move(next);
    }
    // Pieces of several values that make each other without end.
    return std::string(text);
}

/// Absent when nothing was replaced.
std::optional<std::string> ReferenceResolver::signRound(std::string_view text) {
    std::optional<std::string> result;
    std::size_t copied = 0;
    for (auto at = findFrom(text, 0, SignStarts); at < text.size(); at = findFrom(text, at, SignStarts)) {
        const char kind = text[at];
        if (kind == LiteralMarks::Lead) {
            at = std::max(LiteralMarks::regionEnd(text, at), at + 1);
            continue;
        }
        const auto close = text.find(kind, at + 1);
        if (close == None) {
            ++at;
            continue;
        }
        const auto name = text.substr(at + 1, close - at - 1);
        if (kind == '#' && isStarred(name)) {
            at = close + 1;
            continue;
        }
        auto value = sign(kind, name);
        const auto length = (result ? result->size() : 0) + (value ? value->size() : 0) + text.size() - copied;
        if (!value || length > MaximumLength || !spend(value->size())) {
            ++at;
            continue;
        }
        if (!result) {
            result.emplace();
            result->reserve(text.size() + value->size());
            // A round reads the whole text, whatever it replaces.
            if (!spend(text.size()))
                return std::nullopt;
        }
        result->append(text, copied, at - copied).append(*value);
        copied = at = close + 1;
    }
    if (result)
        result->append(text, copied);
    return result;
}

std::optional<std::string> ReferenceResolver::sign(char kind, std::string_view name) {
    if (name.empty() || name.size() > MaximumName)
        return std::nullopt;
    if (kind == '$')
        return wants(ReferenceKinds::BracketVariables) && isMadeOf(name, EventNames) ? event(name) : std::nullopt;
    if (!wants(ReferenceKinds::Signs))
        return std::nullopt;
    if (kind == '#')
        return hasMarks(name) ? std::nullopt : variable(name, false);
    if (!isMadeOf(name, EnvironmentNames) || !spend(LookUpWork))
        return std::nullopt;
    const auto value = scope_.environment(name);
    return value ? std::optional(LiteralMarks::marked(*value)) : std::nullopt;
}

/// Closes brackets from the inside out: what a bracket holds is resolved when its end is met.
std::string ReferenceResolver::withBrackets(std::string_view text, Pass pass) {
    struct Opening {
        std::size_t at = 0;
        /// Inside a call's arguments, where a value must not end an argument.
        bool isInCall = false;
        /// Only the forms with a sign nest.
        bool hasInner = false;
    };
    std::string out;
    out.reserve(text.size());
    std::vector<Opening> open;
    std::size_t at = 0;
    while (at < text.size()) {
        const auto next = findFrom(text, at, BracketStarts);
        out.append(text, at, next - at);
        if (next == text.size())
            break;
        at = next + 1;
        const char c = text[next];
        if (c == LiteralMarks::Lead) {
            at = std::max(LiteralMarks::regionEnd(text, next), at);
            out.append(text, next, at - next);
            continue;
        }
        if (c == '[') {
            const bool isInCall = !open.empty()
                && (open.back().isInCall || callArguments(std::string_view(out).substr(open.back().at + 1)));
            open.push_back({out.size(), isInCall});
            out += c;
            continue;
        }
        if (open.empty()) {
            out += c;
            continue;
        }
        const auto inner = std::string_view(out).substr(open.back().at + 1);
        if (const auto arguments = callArguments(inner); arguments && spend(inner.size())) {
            // A bracket in a quoted argument does not end the reference.
            if (callEnd(inner, *arguments, [](std::size_t) {}) == None) {
                out += c;
                continue;
            }
        }
        const auto opening = open.back();
        open.pop_back();
        auto value = pass == Pass::Sections && opening.hasInner ? std::nullopt : bracket(inner, pass);
        if (!value || opening.at + value->text.size() + (text.size() - at) > MaximumLength
            || !spend(value->text.size())) {
            out += c;
            continue;
        }
        if (!value->isData && opening.isInCall)
            value->text = LiteralMarks::marked(value->text);
        out.resize(opening.at);
        out += value->text;
        if (pass == Pass::Sections && !open.empty())
            open.back().hasInner = true;
    }
    return out;
}

std::optional<ReferenceResolver::Value> ReferenceResolver::bracket(std::string_view inner, Pass pass) {
    const auto data = [](std::optional<std::string> value) {
        return value ? std::optional(Value{LiteralMarks::marked(*value), true}) : std::nullopt;
    };
    if (inner.empty())
        return std::nullopt;
    const auto rest = inner.substr(1);
    const bool isSigil = std::string_view("#&$\\").find(inner.front()) != None;
    if (pass == Pass::Sections)
        return isSigil || inner.front() == '*' || inner.front() == '!' ? std::nullopt : data(section(inner, false));
    if (!isSigil || rest.empty() || isStarred(rest))
        return std::nullopt;
    if (inner.front() == '&')
        return wants(ReferenceKinds::Sections) ? data(section(rest, true)) : std::nullopt;
    if (!wants(ReferenceKinds::BracketVariables) || rest.size() > 4 * MaximumName)
        return std::nullopt;
    const auto name = nameOf(rest);
    if (inner.front() == '$') {
        auto value = event(name);
        return value ? std::optional(Value{std::move(*value), true}) : std::nullopt;
    }
    if (inner.front() == '\\') {
        const auto number = characterNumber(name);
        if (!number)
            return std::nullopt;
        std::string character;
        appendCharacter(character, *number);
        return data(std::move(character));
    }
    auto value = variable(name, true);
    return value ? std::optional(Value{std::move(*value), false}) : std::nullopt;
}

std::optional<std::string> ReferenceResolver::section(std::string_view reference, bool mayCall) {
    const auto colon = findUnmarked(reference, ':');
    const auto written = trimmed(reference.substr(0, colon));
    if (written.empty() || written.size() > 4 * MaximumName || !spend(LookUpWork + reference.size()))
        return std::nullopt;
    const auto name = nameOf(written);
    std::optional<std::string> parameter;
    if (colon != None) {
        const auto text = reference.substr(colon + 1);
        if (mayCall && findUnmarked(text, '(') != None)
            return call(name, text);
        parameter = nameOf(text);
    }
    if (inputs_ && std::ranges::find(inputs_->sections, name) == inputs_->sections.end())
        inputs_->sections.push_back(name);
    return scope_.section(name, parameter);
}

std::optional<std::string> ReferenceResolver::call(std::string_view measure, std::string_view text) {
    const auto paren = findUnmarked(text, '(');
    const auto function = nameOf(trimmed(text.substr(0, paren)));
    std::vector<std::string> arguments;
    std::size_t begin = paren + 1;
    const auto take = [&](std::size_t end) {
        const auto argument = trimmed(text.substr(begin, end - begin));
        // A value in brackets without a sign comes last in the order, and here this is its last chance.
        arguments.push_back(
            nameOf(argument.find('[') == None ? std::string(argument) : withBrackets(argument, Pass::Sections)));
        begin = end + 1;
    };
    const auto end = callEnd(text, begin, take);
    if (end == None || function.empty() || !trimmed(text.substr(end + 1)).empty())
        return std::nullopt;
    if (!arguments.empty() || !trimmed(text.substr(begin, end - begin)).empty())
        take(end);
    if (inputs_)
        inputs_->isVolatile = true;
    return scope_.call(measure, function, arguments);
}

std::optional<std::string> ReferenceResolver::variable(std::string_view name, bool withBracketForms) {
    constexpr std::string_view CurrentSection = "CURRENTSECTION";
    if (name.size() == CurrentSection.size() && equalsIgnoringCase(name, CurrentSection))
        return currentSection_.empty() ? std::nullopt : std::optional(LiteralMarks::marked(currentSection_));
    if (!spend(LookUpWork) || active_.size() >= MaximumNesting)
        return std::nullopt;
    if (inputs_)
        inputs_->hasVariables = true;
    auto value = scope_.variable(name);
    if (!value || findFrom(*value, 0, withBracketForms ? ValueStarts : SignStarts) == value->size())
        return value;
    const auto hash = CaseFolding::hash(name);
    const auto ring = std::ranges::find_if(
        active_, [&](const Active& active) { return active.hash == hash && equalsIgnoringCase(active.name, name); });
    if (ring != active_.end()) {
        ring->isRing = true;
        return std::nullopt;
    }
    if (!spend(value->size()))
        return std::nullopt;
    active_.push_back({hash, name});
    auto resolved = withSigns(*value);
    if (withBracketForms && resolved.find('[') != std::string::npos)
        resolved = withBrackets(resolved, Pass::Sigils);
    const bool isRing = active_.back().isRing;
    active_.pop_back();
    return isRing ? std::nullopt : std::optional(std::move(resolved));
}

std::optional<std::string> ReferenceResolver::event(std::string_view name) {
    if (!spend(LookUpWork))
        return std::nullopt;
    const auto value = scope_.event(name);
    if (inputs_ && value)
        inputs_->isVolatile = true;
    return value ? std::optional(LiteralMarks::marked(*value)) : std::nullopt;
}

} // namespace Ostrel
