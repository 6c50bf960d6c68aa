#include "OstrelEngine/Measures/Full/FullTimeMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Ostrel {

namespace {

double numberOf(const std::string& text) {
    const auto number = parseDouble(trimmed(text));
    return number && std::isfinite(*number) ? *number : 0;
}

int yearAt(std::int64_t unixSeconds) {
    const auto shown = unixSeconds + LocalZone::offsetAt(unixSeconds).seconds + SecondsFrom1601To1970;
    const auto time = WallTime::fromSecondsSince1601(shown);
    return time ? time->year : 0;
}

/// The first change after now, as the clocks show it.
std::optional<std::int64_t> nextChange(std::int64_t unixSeconds, bool toSummer) {
    const auto now = unixSeconds + LocalZone::offsetAt(unixSeconds).seconds + SecondsFrom1601To1970;
    for (int year = yearAt(unixSeconds), last = year + 1; year <= last; ++year) {
        if (const auto found = LocalZone::change(year, toSummer); found && *found > now)
            return found;
    }
    return std::nullopt;
}

} // namespace

void FullTimeMeasure::update() {
    const bool isNew = optionsDidChange();
    if (isNew)
        readOptions();
    const auto now = static_cast<std::int64_t>(std::floor(host().platform().clock.wallSeconds()));
    const auto second = secondToShow(now);
    const auto time = second ? WallTime::fromSecondsSince1601(*second) : std::nullopt;
    if (!time) {
        host().log(LogLevel::Error, name(), "TimeStamp means no time: " + std::string(text("TimeStamp"_key)));
        return;
    }
    const auto offset = offsetAt(now);
    if (!isNew && second == shownSecond_ && offset == shownOffset_)
        return publishUnchanged();
    shownSecond_ = second;
    shownOffset_ = offset;
    if (!format_ && whole_ == Whole::None)
        return publishNumber(static_cast<double>(*second));
    const auto shown = shownText(*time, now);
    publishText(shown, numberOf(shown));
}

void FullTimeMeasure::readOptions() {
    const auto written = text("Format"_key);
    whole_ = equalsIgnoringCase(written, "LOCALE-DATE") ? Whole::Date
        : equalsIgnoringCase(written, "LOCALE-TIME")    ? Whole::Time
                                                        : Whole::None;
    format_ = written.empty() || whole_ != Whole::None ? std::nullopt : std::optional(TimeFormat(written));
    locale_ = whole_ == Whole::None ? locale("FormatLocale"_key) : TimeLocale::ofMachine();
    const auto zone = text("TimeZone"_key, "local");
    zone_ = equalsIgnoringCase(trimmed(zone), "LOCAL") ? std::nullopt : OptionValues::number(zone);
    constexpr double LargestZone = 48;
    if (zone_)
        zone_ = std::clamp(*zone_, -LargestZone, LargestZone);
    addsSummerTime_ = isOn("DaylightSavingTime"_key, true);
    readStamp();
}

std::shared_ptr<const TimeLocale> FullTimeMeasure::locale(const CaseKey& key) const {
    const auto written = text(key);
    if (auto locale = TimeLocale::named(written))
        return locale;
    host().log(LogLevel::Warning, name(), "Unknown locale: " + std::string(written));
    return TimeLocale::english();
}

void FullTimeMeasure::readStamp() {
    stamp_ = Stamp::Invalid;
    changeHour_.reset();
    const auto written = trimmed(text("TimeStamp"_key));
    const auto mask = text("TimeStampFormat"_key);
    if (written.empty()) {
        stamp_ = mask.empty() ? Stamp::Now : Stamp::Invalid;
        return;
    }
    if (!mask.empty()) {
        const auto time = TimeFormat(mask).parse(written, *locale("TimeStampLocale"_key));
        const auto second = time ? time->secondsSince1601() : std::nullopt;
        stamp_ = second ? Stamp::Date : Stamp::Invalid;
        stampSecond_ = second.value_or(0);
        return;
    }
    if (const auto number = OptionValues::numberAlone(written)) {
        stamp_ = Stamp::Moment;
        stampSecond_ = numericAsInt64(std::floor(*number));
        return;
    }
    readNamedStamp(upperCased(written));
}

/// "DSTSTART", "DSTEND2026"
void FullTimeMeasure::readNamedStamp(std::string_view word) {
    if (word == "DSTNEXTSTART" || word == "DSTNEXTEND") {
        stamp_ = word == "DSTNEXTSTART" ? Stamp::NextStart : Stamp::NextEnd;
        return;
    }
    for (const bool isStart : {true, false}) {
        const std::string_view prefix = isStart ? "DSTSTART" : "DSTEND";
        if (!word.starts_with(prefix))
            continue;
        const auto year = word.substr(prefix.size());
        if (year.empty()) {
            stamp_ = isStart ? Stamp::Start : Stamp::End;
        } else if (const auto number = parseInteger(year); number && *number > 1900 && *number < 9999) {
            const auto change = LocalZone::change(static_cast<int>(*number), isStart);
            stamp_ = change ? Stamp::Date : Stamp::Invalid;
            stampSecond_ = change.value_or(0);
        }
    }
}

std::int64_t FullTimeMeasure::offsetAt(std::int64_t unixSeconds) const {
    if (!zone_)
        return LocalZone::offsetAt(unixSeconds).seconds;
    const auto summer = addsSummerTime_ ? LocalZone::summerShiftAt(unixSeconds) : 0;
    return std::llround(*zone_ * 3600) + summer;
}

std::optional<std::int64_t> FullTimeMeasure::secondToShow(std::int64_t unixSeconds) {
    switch (stamp_) {
    case Stamp::Now:
        return unixSeconds + offsetAt(unixSeconds) + SecondsFrom1601To1970;
    case Stamp::Moment:
        return zone_ ? stampSecond_ + offsetAt(unixSeconds) : stampSecond_;
    case Stamp::Date:
        return stampSecond_;
    case Stamp::Invalid:
        return std::nullopt;
    default:
        break;
    }
    // Zones change on the hour or its half, and finding that walks through a year.
    const auto hour = unixSeconds / 1800;
    if (std::exchange(changeHour_, hour) != hour)
        change_ = summerTimeChange(unixSeconds);
    return change_;
}

std::optional<std::int64_t> FullTimeMeasure::summerTimeChange(std::int64_t unixSeconds) const {
    if (stamp_ == Stamp::NextStart || stamp_ == Stamp::NextEnd)
        return nextChange(unixSeconds, stamp_ == Stamp::NextStart);
    return LocalZone::change(yearAt(unixSeconds), stamp_ == Stamp::Start);
}

std::string FullTimeMeasure::shownText(const WallTime& time, std::int64_t unixSeconds) const {
    if (whole_ != Whole::None)
        return whole_ == Whole::Date ? locale_->date(time, TimeLocale::Style::Short) : locale_->time(time);
    TimeFormat::Zone zone{offsetAt(unixSeconds), {}};
    if (format_->showsZone()) {
        zone.name = zone_
            ? "UTC" + (*zone_ >= 0 ? "+" + OptionValues::numberText(*zone_, 2) : OptionValues::numberText(*zone_, 2))
            : TimeLocale::zoneName(LocalZone::offsetAt(unixSeconds).isSummer);
    }
    return format_->text(time, *locale_, zone);
}

} // namespace Ostrel
