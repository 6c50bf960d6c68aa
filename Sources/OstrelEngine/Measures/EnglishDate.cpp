#include "OstrelEngine/Measures/EnglishDate.h"

#include "OstrelCore/Text/Numbers.h"

#include <algorithm>
#include <array>

namespace Ostrel {

namespace {

constexpr std::size_t ShortName = 3;

constexpr std::array<std::string_view, 7> Weekdays
    = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
constexpr std::array<std::string_view, 12> Months = {"January", "February", "March", "April", "May", "June", "July",
    "August", "September", "October", "November", "December"};

void appendNumber(int number, int width, std::string& text) {
    const auto digits = formatInteger(number);
    text.append(static_cast<std::size_t>(std::max(0, width - static_cast<int>(digits.size()))), '0');
    text += digits;
}

void appendName(std::string_view name, int width, std::string& text) {
    text += width == 4 ? name : name.substr(0, ShortName);
}

int twelveHour(int hour) {
    return hour % 12 == 0 ? 12 : hour % 12;
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The text after an opening quote, in which two quotes are one; moves behind the closing one.
std::string quoted(std::string_view pattern, std::size_t& at) {
    std::string text;
    while (at < pattern.size()) {
        const char c = pattern[at++];
        if (c == '\'' && !pattern.substr(at).starts_with('\''))
            break;
        if (c == '\'')
            ++at;
        text += c;
    }
    return text;
}

} // namespace

bool EnglishDate::isKnown(const Piece& piece) {
    switch (piece.field) {
    case 0:
        return true;
    case 'y':
        return piece.width == 2 || piece.width == 4;
    case 'M':
    case 'E':
        return piece.width <= 4;
    case 'd':
    case 'H':
    case 'h':
    case 'm':
    case 's':
        return piece.width <= 2;
    case 'a':
        return piece.width == 1;
    default:
        return false;
    }
}

std::optional<EnglishDate> EnglishDate::create(std::string_view pattern) {
    EnglishDate date;
    for (std::size_t at = 0; at < pattern.size();) {
        Piece piece;
        const char c = pattern[at];
        if (pattern.substr(at).starts_with("''")) {
            piece.literal = '\'';
            at += 2;
        } else if (c == '\'') {
            piece.literal = quoted(pattern, ++at);
        } else if (isLetter(c)) {
            const auto end = std::min(pattern.find_first_not_of(c, at), pattern.size());
            piece.field = c;
            piece.width = static_cast<int>(std::min<std::size_t>(end - at, 9));
            at = end;
        } else {
            piece.literal = c;
            ++at;
        }
        if (!isKnown(piece))
            return std::nullopt;
        date.pieces_.push_back(std::move(piece));
    }
    return date;
}

void EnglishDate::append(const std::tm& time, std::string& text) const {
    const int year = time.tm_year + 1900;
    for (const auto& piece : pieces_) {
        switch (piece.field) {
        case 'y':
            appendNumber(piece.width == 2 ? year % 100 : year, piece.width, text);
            break;
        case 'M':
            if (piece.width > 2)
                appendName(Months[static_cast<std::size_t>(time.tm_mon)], piece.width, text);
            else
                appendNumber(time.tm_mon + 1, piece.width, text);
            break;
        case 'E':
            appendName(Weekdays[static_cast<std::size_t>(time.tm_wday)], piece.width, text);
            break;
        case 'd':
            appendNumber(time.tm_mday, piece.width, text);
            break;
        case 'H':
            appendNumber(time.tm_hour, piece.width, text);
            break;
        case 'h':
            appendNumber(twelveHour(time.tm_hour), piece.width, text);
            break;
        case 'm':
            appendNumber(time.tm_min, piece.width, text);
            break;
        case 's':
            appendNumber(time.tm_sec, piece.width, text);
            break;
        case 'a':
            text += time.tm_hour < 12 ? "AM" : "PM";
            break;
        default:
            text += piece.literal;
        }
    }
}

} // namespace Ostrel
