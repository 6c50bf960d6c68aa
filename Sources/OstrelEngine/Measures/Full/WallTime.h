#pragma once

#include <cstdint>
#include <ctime>
#include <optional>

namespace Ostrel {

/// Between 1601-01-01 and 1970-01-01.
constexpr std::int64_t SecondsFrom1601To1970 = 11644473600;

/// A moment as a calendar and a clock on the wall show it: Gregorian, in some time zone.
struct WallTime {
    int year = 1601;
    /// 1 to 12.
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    /// From Sunday.
    int weekday = 1;
    /// From 0.
    int dayOfYear = 0;

    /// Absent before 1601 and after 9999.
    static std::optional<WallTime> fromSecondsSince1601(std::int64_t seconds);
    /// Weekday and day of the year do not count; absent when there is no such day or time.
    std::optional<std::int64_t> secondsSince1601() const;

    struct ISOWeek {
        int year = 0;
        int week = 0;
    };
    ISOWeek isoWeek() const;
    /// 0 to 53; days before the first `firstWeekday` of the year are in week 0.
    int weekFrom(int firstWeekday) const;

    friend bool operator==(const WallTime&, const WallTime&) = default;
};

/// The time zone of this machine.
namespace LocalZone {

struct Offset {
    /// East of Greenwich.
    std::int64_t seconds = 0;
    bool isSummer = false;
};
/// At a moment in seconds since 1970 UTC.
Offset offsetAt(std::int64_t unixSeconds);
/// What summer time adds to the offset at this moment; 0 in winter.
std::int64_t summerShiftAt(std::int64_t unixSeconds);

/// When summer time begins or ends in a year, in seconds since 1601 as clocks showed them just before. Absent when the
/// zone has no such change.
std::optional<std::int64_t> change(int year, bool toSummer);

} // namespace LocalZone

} // namespace Ostrel
