#include "OstrelEngine/Measures/Full/TimeFormat.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/Full/TimeLocale.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace Ostrel {

namespace {

constexpr std::string_view KnownCodes = "aAbBcCdDeFgGhHIjmMnprRStTuUVwWxXyYzZ%";
constexpr std::size_t MaximumPieces = 4096;

/// What a code stands for that is made of others.
std::string_view expansion(char code) {
    switch (code) {
    case 'D':
        return "%m/%d/%y";
    case 'F':
        return "%Y-%m-%d";
    case 'R':
        return "%H:%M";
    case 'T':
        return "%H:%M:%S";
    default:
        return {};
    }
}

struct Digits {
    int value = 0;
    int width = 0;
    char padding = '0';
};

/// The number that a code gives; absent for codes of other kinds.
std::optional<Digits> digitsOf(char code, const WallTime& time) {
    switch (code) {
    case 'C':
        return Digits{time.year / 100, 2};
    case 'd':
        return Digits{time.day, 2};
    case 'e':
        return Digits{time.day, 2, ' '};
    case 'g':
        return Digits{time.isoWeek().year % 100, 2};
    case 'G':
        return Digits{time.isoWeek().year, 4};
    case 'H':
        return Digits{time.hour, 2};
    case 'I':
        return Digits{(time.hour + 11) % 12 + 1, 2};
    case 'j':
        return Digits{time.dayOfYear + 1, 3};
    case 'm':
        return Digits{time.month, 2};
    case 'M':
        return Digits{time.minute, 2};
    case 'S':
        return Digits{time.second, 2};
    case 'u':
        return Digits{(time.weekday + 6) % 7 + 1, 1};
    case 'U':
        return Digits{time.weekFrom(0), 2};
    case 'V':
        return Digits{time.isoWeek().week, 2};
    case 'w':
        return Digits{time.weekday, 1};
    case 'W':
        return Digits{time.weekFrom(1), 2};
    case 'y':
        return Digits{time.year % 100, 2};
    case 'Y':
        return Digits{time.year, 4};
    default:
        return std::nullopt;
    }
}

std::string padded(const Digits& digits, bool isShort) {
    auto text = formatInteger(digits.value);
    const auto width = static_cast<std::size_t>(digits.width);
    if (!isShort && text.size() < width)
        text.insert(0, width - text.size(), digits.padding);
    return text;
}

std::string offsetText(std::int64_t seconds) {
    const auto minutes = std::abs(seconds) / 60;
    return (seconds < 0 ? "-" : "+") + padded({static_cast<int>(minutes / 60), 2}, false)
        + padded({static_cast<int>(minutes % 60), 2}, false);
}

/// Reads the parts of a date from the front of a text.
class DateReader {
public:
    DateReader(std::string_view text, const TimeLocale& locale)
        : text_(text)
        , locale_(locale) { }

    void skipBlanks() { text_ = text_.substr(text_.size() - trimmedFront(text_).size()); }

    bool literal(std::string_view expected) {
        while (!expected.empty()) {
            const auto c = decodeCharacter(expected, 0);
            const auto piece = expected.substr(0, c.length);
            expected.remove_prefix(c.length);
            if (isWhitespace(c.value) || isNewline(c.value)) {
                skipBlanks();
            } else if (text_.starts_with(piece)) {
                text_.remove_prefix(c.length);
            } else {
                return false;
            }
        }
        return true;
    }

    std::optional<int> number(std::size_t mostDigits) {
        skipBlanks();
        std::size_t length = 0;
        int value = 0;
        while (length < std::min(mostDigits, text_.size()) && isASCIIDigit(text_[length]))
            value = value * 10 + (text_[length++] - '0');
        text_.remove_prefix(length);
        return length > 0 ? std::optional(value) : std::nullopt;
    }

    /// The position of the longest name that the text begins with.
    template <std::size_t Count> std::optional<int> name(const std::array<std::string, Count>& names) {
        std::optional<std::size_t> best;
        for (std::size_t i = 0; i < Count; ++i) {
            if (!names[i].empty() && equalsIgnoringCase(text_.substr(0, names[i].size()), names[i])
                && (!best || names[i].size() > names[*best].size()))
                best = i;
        }
        if (!best)
            return std::nullopt;
        text_.remove_prefix(names[*best].size());
        return static_cast<int>(*best);
    }

    bool read(char code);
    bool isAtEnd() const { return trimmed(text_).empty(); }
    std::optional<WallTime> result() const;

private:
    static std::string_view trimmedFront(std::string_view text) {
        const auto rest = trimmed(text);
        return rest.empty() ? rest : text.substr(static_cast<std::size_t>(rest.data() - text.data()));
    }
    bool take(std::optional<int>& into, std::optional<int> number, int minimum, int maximum) {
        if (!number || *number < minimum || *number > maximum)
            return false;
        into = number;
        return true;
    }
    bool all(std::string_view format) {
        for (std::size_t i = 0; i < format.size(); ++i) {
            if (format[i] == '%' ? !read(format[++i]) : !literal(format.substr(i, 1)))
                return false;
        }
        return true;
    }

    std::string_view text_;
    const TimeLocale& locale_;
    std::optional<int> year_, century_, yearOfCentury_, month_, day_, dayOfYear_, hour_, hourOfHalf_, minute_, second_;
    std::optional<int> half_, ignored_;
};

bool DateReader::read(char code) {
    switch (code) {
    case 'a':
    case 'A':
        skipBlanks();
        return name(locale_.weekdays) || name(locale_.shortWeekdays);
    case 'b':
    case 'B':
    case 'h': {
        skipBlanks();
        auto month = name(locale_.months);
        if (!month)
            month = name(locale_.shortMonths);
        if (month)
            month_ = *month + 1;
        return month.has_value();
    }
    case 'C':
        return take(century_, number(2), 0, 99);
    case 'd':
    case 'e':
        return take(day_, number(2), 1, 31);
    case 'H':
        return take(hour_, number(2), 0, 23);
    case 'I':
        return take(hourOfHalf_, number(2), 1, 12);
    case 'j':
        return take(dayOfYear_, number(3), 1, 366);
    case 'm':
        return take(month_, number(2), 1, 12);
    case 'M':
        return take(minute_, number(2), 0, 59);
    case 'n':
    case 't':
        skipBlanks();
        return true;
    case 'p': {
        skipBlanks();
        half_ = name(std::array<std::string, 2>{locale_.am, locale_.pm});
        return half_.has_value();
    }
    case 'S':
        return take(second_, number(2), 0, 61);
    case 'u':
    case 'w':
        return take(ignored_, number(1), 0, 7);
    case 'g':
    case 'U':
    case 'V':
    case 'W':
        return take(ignored_, number(2), 0, 99);
    case 'G':
        return take(ignored_, number(4), 0, 9999);
    case 'y':
        return take(yearOfCentury_, number(2), 0, 99);
    case 'Y':
        return take(year_, number(4), 0, 9999);
    case '%':
        return literal("%");
    case 'r':
        return all("%I:%M:%S %p");
    case 'c':
        return all("%a %b %d %H:%M:%S %Y");
    case 'x':
        return all("%m/%d/%y");
    case 'X':
        return all("%H:%M:%S");
    default:
        return !expansion(code).empty() && all(expansion(code));
    }
}

std::optional<WallTime> DateReader::result() const {
    constexpr int YearWithoutAny = 1900;
    constexpr int FirstYearOfLastCentury = 69;
    WallTime time;
    time.year = year_.value_or(YearWithoutAny);
    if (!year_ && yearOfCentury_) {
        const int century = century_.value_or(*yearOfCentury_ < FirstYearOfLastCentury ? 20 : 19);
        time.year = century * 100 + *yearOfCentury_;
    }
    time.month = month_.value_or(1);
    time.day = day_.value_or(1);
    time.hour = hour_.value_or(hourOfHalf_ ? *hourOfHalf_ % 12 + (half_ == 1 ? 12 : 0) : 0);
    time.minute = minute_.value_or(0);
    time.second = std::min(second_.value_or(0), 59);
    auto seconds = time.secondsSince1601();
    if (!seconds)
        return std::nullopt;
    if (dayOfYear_ && !month_ && !day_)
        *seconds += (*dayOfYear_ - 1) * std::int64_t{86400};
    return WallTime::fromSecondsSince1601(*seconds);
}

} // namespace

TimeFormat::TimeFormat(std::string_view format) {
    Piece literal;
    const auto flush = [&] {
        if (!literal.literal.empty())
            pieces_.push_back(std::exchange(literal, {}));
    };
    while (!format.empty()) {
        auto rest = format.substr(1);
        const bool isShort = rest.starts_with('#');
        rest.remove_prefix(isShort ? 1 : 0);
        // Other digits or eras, which are written as without.
        const bool hasPrefix = rest.size() > 1 && (rest.front() == 'E' || rest.front() == 'O');
        rest.remove_prefix(hasPrefix ? 1 : 0);
        const bool isCode = format.front() == '%' && !rest.empty() && KnownCodes.find(rest.front()) != KnownCodes.npos
            && pieces_.size() < MaximumPieces;
        if (!isCode) {
            literal.literal += format.front();
            format.remove_prefix(1);
            continue;
        }
        flush();
        pieces_.push_back({rest.front(), isShort, {}});
        format = rest.substr(1);
    }
    flush();
}

bool TimeFormat::showsZone() const {
    return std::ranges::any_of(pieces_, [](const Piece& piece) { return piece.code == 'Z'; });
}

std::string TimeFormat::text(const WallTime& time, const TimeLocale& locale, const Zone& zone) const {
    std::string text;
    for (const auto& piece : pieces_)
        append(piece, time, locale, zone, text);
    return text;
}

void TimeFormat::append(
    const Piece& piece, const WallTime& time, const TimeLocale& locale, const Zone& zone, std::string& text) const {
    const auto style = piece.isShort ? TimeLocale::Style::Long : TimeLocale::Style::Short;
    const auto weekday = static_cast<std::size_t>(time.weekday);
    const auto month = static_cast<std::size_t>(time.month - 1);
    switch (piece.code) {
    case 0:
        text += piece.literal;
        return;
    case 'a':
        text += locale.shortWeekdays[weekday];
        return;
    case 'A':
        text += locale.weekdays[weekday];
        return;
    case 'b':
    case 'h':
        text += locale.shortMonths[month];
        return;
    case 'B':
        text += locale.months[month];
        return;
    case 'p':
        text += time.hour < 12 ? locale.am : locale.pm;
        return;
    case 'c':
        text += locale.dateAndTime(time, style);
        return;
    case 'x':
        text += locale.date(time, style);
        return;
    case 'X':
        text += locale.time(time);
        return;
    case 'r':
        text += TimeFormat("%I:%M:%S ").text(time, locale, zone);
        text += lowerCased(time.hour < 12 ? locale.am : locale.pm);
        return;
    case 'z':
        text += offsetText(zone.offsetSeconds);
        return;
    case 'Z':
        text += zone.name;
        return;
    case 'n':
        text += '\n';
        return;
    case 't':
        text += '\t';
        return;
    case '%':
        text += '%';
        return;
    default:
        break;
    }
    if (const auto digits = digitsOf(piece.code, time))
        text += padded(*digits, piece.isShort);
    else
        text += TimeFormat(expansion(piece.code)).text(time, locale, zone);
}

std::optional<WallTime> TimeFormat::parse(std::string_view text, const TimeLocale& locale) const {
    DateReader reader(text, locale);
    for (const auto& piece : pieces_) {
        if (piece.code == 0 ? !reader.literal(piece.literal) : !reader.read(piece.code))
            return std::nullopt;
    }
    return reader.isAtEnd() ? reader.result() : std::nullopt;
}

} // namespace Ostrel
