#include "OstrelEngine/Measures/Full/WallTime.h"

#include <chrono>

namespace Ostrel {

namespace {

namespace chrono = std::chrono;

constexpr std::int64_t SecondsADay = 86400;
constexpr chrono::sys_days Epoch = chrono::year(1601) / 1 / 1;
constexpr int FirstYear = 1601;
constexpr int LastYear = 9999;

std::int64_t unixSecondsOfYear(int year) {
    return chrono::sys_days(chrono::year(year) / 1 / 1).time_since_epoch().count() * SecondsADay;
}

} // namespace

std::optional<WallTime> WallTime::fromSecondsSince1601(std::int64_t seconds) {
    constexpr auto End = chrono::sys_days(chrono::year(LastYear + 1) / 1 / 1);
    if (seconds < 0 || seconds >= (End - Epoch).count() * SecondsADay)
        return std::nullopt;
    const auto day = Epoch + chrono::days(seconds / SecondsADay);
    const chrono::year_month_day date(day);
    const int rest = static_cast<int>(seconds % SecondsADay);
    WallTime time;
    time.year = static_cast<int>(date.year());
    time.month = static_cast<int>(static_cast<unsigned>(date.month()));
    time.day = static_cast<int>(static_cast<unsigned>(date.day()));
    time.hour = rest / 3600;
    time.minute = rest / 60 % 60;
    time.second = rest % 60;
    time.weekday = static_cast<int>(chrono::weekday(day).c_encoding());
    time.dayOfYear = static_cast<int>((day - chrono::sys_days(date.year() / 1 / 1)).count());
    return time;
}

std::optional<std::int64_t> WallTime::secondsSince1601() const {
    const chrono::year_month_day date
        = chrono::year(year) / chrono::month(static_cast<unsigned>(month)) / chrono::day(static_cast<unsigned>(day));
    const bool isTime = hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second < 60;
    if (!date.ok() || year < FirstYear || year > LastYear || !isTime)
        return std::nullopt;
    return (chrono::sys_days(date) - Epoch).count() * SecondsADay + hour * 3600 + minute * 60 + second;
}

WallTime::ISOWeek WallTime::isoWeek() const {
    // The week belongs to the year of its Thursday.
    const auto today = chrono::sys_days(chrono::year(year) / 1 / 1) + chrono::days(dayOfYear);
    const auto thursday = today + chrono::days(3 - (weekday + 6) % 7);
    const auto yearOfWeek = chrono::year_month_day(thursday).year();
    const auto daysIn = (thursday - chrono::sys_days(yearOfWeek / 1 / 1)).count();
    return {static_cast<int>(yearOfWeek), static_cast<int>(daysIn / 7) + 1};
}

int WallTime::weekFrom(int firstWeekday) const {
    return (dayOfYear + 7 - (weekday + 7 - firstWeekday) % 7) / 7;
}

namespace LocalZone {

Offset offsetAt(std::int64_t unixSeconds) {
    const auto second = static_cast<std::time_t>(unixSeconds);
    std::tm local{};
    if (!localtime_r(&second, &local))
        return {};
    return {local.tm_gmtoff, local.tm_isdst > 0};
}

std::int64_t summerShiftAt(std::int64_t unixSeconds) {
    const auto now = offsetAt(unixSeconds);
    if (!now.isSummer)
        return 0;
    constexpr std::int64_t Step = 30 * SecondsADay;
    for (int i = 1; i <= 12; ++i) {
        if (const auto later = offsetAt(unixSeconds + i * Step); !later.isSummer)
            return now.seconds - later.seconds;
    }
    return 0;
}

std::optional<std::int64_t> change(int year, bool toSummer) {
    if (year < FirstYear || year >= LastYear)
        return std::nullopt;
    // A day more on both sides covers every offset.
    const auto begin = unixSecondsOfYear(year) - SecondsADay;
    const auto end = unixSecondsOfYear(year + 1) + SecondsADay;
    for (auto day = begin; day < end; day += SecondsADay) {
        if (offsetAt(day).isSummer == toSummer || offsetAt(day + SecondsADay).isSummer != toSummer)
            continue;
        auto before = day;
        auto after = day + SecondsADay;
        while (after - before > 1) {
            const auto middle = before + (after - before) / 2;
            (offsetAt(middle).isSummer == toSummer ? after : before) = middle;
        }
        const auto shown = after + offsetAt(before).seconds + SecondsFrom1601To1970;
        if (const auto time = WallTime::fromSecondsSince1601(shown); time && time->year == year)
            return shown;
    }
    return std::nullopt;
}

} // namespace LocalZone

} // namespace Ostrel
