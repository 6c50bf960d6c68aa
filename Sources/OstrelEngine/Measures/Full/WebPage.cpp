#include "OstrelEngine/Measures/Full/WebPage.h"

#include "OstrelCore/Documents/TextDecoding.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PerlRegularExpression.h"
#include "OstrelEngine/Measures/Full/CharacterReferences.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include <unicode/ucnv.h>
#include <unicode/unistr.h>

namespace Ostrel::WebPage {

namespace {

constexpr int MaxIndex = 99;
constexpr char32_t LastCharacter = 0x10FFFF;

/// What the converters call a code page; empty for UTF-8 and what is told by the text itself.
std::string converterName(int codePage) {
    switch (codePage) {
    case 1200:
        return "UTF-16LE";
    case 1201:
        return "UTF-16BE";
    case 12000:
        return "UTF-32LE";
    case 12001:
        return "UTF-32BE";
    case 932:
        return "ibm-943_P15A-2003";
    case 20127:
        return "US-ASCII";
    case 20866:
        return "KOI8-R";
    case 21866:
        return "KOI8-U";
    case 20932:
    case 51932:
        return "EUC-JP";
    case 51949:
        return "EUC-KR";
    case 54936:
        return "GB18030";
    default:
        break;
    }
    if (codePage >= 28591 && codePage <= 28606)
        return "ISO-8859-" + formatInteger(codePage - 28590);
    return (codePage >= 874 && codePage < 1000) || (codePage >= 1250 && codePage <= 1258)
        ? "windows-" + formatInteger(codePage)
        : "cp" + formatInteger(codePage);
}

bool isSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

std::optional<char32_t> digits(std::string_view text, int base) {
    char32_t value = 0;
    for (const char c : text) {
        const char upper = asciiUpper(c);
        const int digit = isASCIIDigit(c) ? c - '0' : upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : base;
        if (digit >= base)
            return std::nullopt;
        value
            = std::min<char32_t>(value * static_cast<char32_t>(base) + static_cast<char32_t>(digit), LastCharacter + 1);
    }
    return text.empty() ? std::nullopt : std::optional(value);
}

/// The character of "#38", "#x26" or "amp".
std::optional<char32_t> reference(std::string_view name, int mode) {
    if (!name.starts_with('#'))
        return mode == 2 ? std::nullopt : characterOfReference(name);
    if (mode == 3)
        return std::nullopt;
    name.remove_prefix(1);
    const bool isHexadecimal = name.starts_with('x') || name.starts_with('X');
    const auto value = digits(name.substr(isHexadecimal ? 1 : 0), isHexadecimal ? 16 : 10);
    if (!value || *value == 0 || *value > LastCharacter || isSurrogate(*value))
        return std::nullopt;
    return value;
}

/// The code unit of `\uXXXX` or `\UXXXXXXXX` at `at`, and its length.
std::optional<DecodedCharacter> codePoint(std::string_view text, std::size_t at) {
    if (at + 1 >= text.size() || text[at] != '\\' || (text[at + 1] != 'u' && text[at + 1] != 'U'))
        return std::nullopt;
    const std::size_t length = text[at + 1] == 'u' ? 6 : 10;
    if (at + length > text.size())
        return std::nullopt;
    const auto value = digits(text.substr(at + 2, length - 2), 16);
    return value && *value <= 0xFFFF ? std::optional(DecodedCharacter{*value, length}) : std::nullopt;
}

std::vector<std::string> captures(std::string_view subject, const PerlRegularExpression::Groups& groups) {
    std::vector<std::string> result;
    for (const auto& group : groups)
        result.emplace_back(group ? subject.substr(group->begin, group->end - group->begin) : std::string_view());
    return result;
}

/// Matches the part's own pattern; false when it fails.
bool match(WebPart& part, std::string_view subject) {
    const auto pattern = PerlRegularExpression::compile(part.pattern, &part.error);
    const auto groups = pattern ? pattern->match(subject) : std::nullopt;
    if (!groups) {
        if (pattern)
            part.error = "RegExp matches nothing";
        return false;
    }
    part.captures = captures(subject, *groups);
    return true;
}

const std::string* choose(const std::vector<std::string>& captures, int index) {
    const auto place = static_cast<std::size_t>(std::clamp(index, 0, MaxIndex));
    return place < captures.size() ? &captures[place] : nullptr;
}

} // namespace

std::string decoded(std::string bytes, int codePage) {
    if (codePage == 0 || codePage == 65001 || bytes.starts_with("\xEF\xBB\xBF"))
        return decodeText(std::move(bytes));
    UErrorCode failed = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(
        ucnv_open(converterName(codePage).c_str(), &failed), ucnv_close);
    if (U_FAILURE(failed))
        return decodeText(std::move(bytes));
    const icu::UnicodeString text(bytes.data(), static_cast<std::int32_t>(bytes.size()), converter.get(), failed);
    std::string result;
    text.toUTF8String(result);
    if (result.starts_with("\xEF\xBB\xBF"))
        result.erase(0, 3);
    return result;
}

void take(std::string_view page, std::vector<WebPart>& parts) {
    for (auto& part : parts) {
        const auto* parent = part.parent ? &parts[*part.parent] : nullptr;
        if (parent && parent->hasFailed) {
            part.hasFailed = true;
            continue;
        }
        const std::string* chosen = nullptr;
        if (parent) {
            // A measure without a pattern hands on what it was given.
            const auto* source = parent;
            while (source->pattern.empty() && source->parent)
                source = &parts[*source->parent];
            chosen = choose(source->captures, part.index);
            if (!part.pattern.empty()) {
                part.hasFailed = !match(part, chosen ? std::string_view(*chosen) : std::string_view());
                chosen = choose(part.captures, part.index2);
            }
        } else {
            if (part.pattern.empty())
                part.captures = {std::string(page)};
            else
                part.hasFailed = !match(part, page);
            chosen = choose(part.captures, part.index);
        }
        part.isMissing = !part.hasFailed && !chosen;
        if (part.hasFailed || !chosen)
            continue;
        part.text = *chosen;
        if (part.decodedReferences > 0)
            part.text = withoutReferences(part.text, part.decodedReferences);
        if (part.decodesCodePoints)
            part.text = withoutCodePoints(part.text);
    }
}

std::string withoutReferences(std::string_view text, int mode) {
    // The longest name and a number of eight digits.
    constexpr std::size_t Longest = 12;
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto end = text[i] == '&' ? text.substr(i, Longest).find(';') : std::string_view::npos;
        const auto c = end == std::string_view::npos ? std::nullopt : reference(text.substr(i + 1, end - 1), mode);
        if (!c) {
            result += text[i];
            continue;
        }
        appendCharacter(result, *c);
        i += end;
    }
    return result;
}

std::string withoutCodePoints(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        auto unit = codePoint(text, i);
        if (unit && unit->value >= 0xD800 && unit->value <= 0xDBFF) {
            const auto low = codePoint(text, i + unit->length);
            if (low && low->value >= 0xDC00 && low->value <= 0xDFFF) {
                unit->value = 0x10000 + ((unit->value - 0xD800) << 10) + (low->value - 0xDC00);
                unit->length += low->length;
            }
        }
        if (!unit || isSurrogate(unit->value)) {
            result += text[i++];
            continue;
        }
        appendCharacter(result, unit->value);
        i += unit->length;
    }
    return result;
}

std::string encodedAddress(std::string_view url) {
    constexpr std::string_view Kept = "-_.~!*'();:@&=+$,/?%#[]";
    constexpr std::string_view Digits = "0123456789ABCDEF";
    const auto scheme = url.find("://");
    const auto host = scheme == std::string_view::npos ? 0 : std::min(url.find('/', scheme + 3), url.size());
    std::string result(url.substr(0, host));
    for (const char c : url.substr(host)) {
        const auto byte = static_cast<unsigned char>(c);
        const char upper = asciiUpper(c);
        if (isASCIIDigit(c) || (upper >= 'A' && upper <= 'Z') || Kept.find(c) != std::string_view::npos)
            result += c;
        else
            result.append({'%', Digits[byte >> 4], Digits[byte & 15]});
    }
    return result;
}

std::string hostOf(std::string_view url) {
    const auto scheme = url.find("://");
    if (scheme == std::string_view::npos)
        return {};
    if (!equalsIgnoringCase(url.substr(0, scheme), "http") && !equalsIgnoringCase(url.substr(0, scheme), "https"))
        return {};
    url.remove_prefix(scheme + 3);
    // Some clients end the host at a backslash, too.
    url = url.substr(0, url.find_first_of("/?#\\"));
    url.remove_prefix(url.rfind('@') + 1);
    if (url.starts_with('['))
        return lowerCased(url.substr(0, url.find(']') + 1));
    return lowerCased(url.substr(0, url.find(':')));
}

} // namespace Ostrel::WebPage
