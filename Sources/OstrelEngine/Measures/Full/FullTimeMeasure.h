#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/TimeFormat.h"
#include "OstrelEngine/Measures/Full/TimeLocale.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Ostrel {

/// The time now, or at `TimeStamp`: without `Format` the seconds since 1601 that the clock on the wall stands for, else
/// the text and the number that the text is. A time stamp that means nothing keeps the last value.
class FullTimeMeasure final : public FullMeasure {
public:
    using FullMeasure::FullMeasure;

    void update() override;
    std::optional<double> timeStamp() const override { return static_cast<double>(shownSecond_.value_or(0)); }

private:
    enum class Whole { None, Date, Time };

    void readOptions();
    void readStamp();
    void readNamedStamp(std::string_view word);
    std::shared_ptr<const TimeLocale> locale(const CaseKey& key) const;
    std::int64_t offsetAt(std::int64_t unixSeconds) const;
    std::optional<std::int64_t> secondToShow(std::int64_t unixSeconds);
    std::optional<std::int64_t> summerTimeChange(std::int64_t unixSeconds) const;
    std::string shownText(const WallTime& time, std::int64_t unixSeconds) const;

    std::optional<TimeFormat> format_;
    Whole whole_ = Whole::None;
    std::shared_ptr<const TimeLocale> locale_ = TimeLocale::english();
    /// Hours east of Greenwich; absent for the machine's zone.
    std::optional<double> zone_;
    bool addsSummerTime_ = true;

    /// A date stands for itself, a moment may be shifted by the zone.
    enum class Stamp { Now, Moment, Date, NextStart, NextEnd, Start, End, Invalid };
    Stamp stamp_ = Stamp::Now;
    std::int64_t stampSecond_ = 0;
    /// When a change of summer time was looked up last, in half hours since 1970.
    std::optional<std::int64_t> changeHour_;
    std::optional<std::int64_t> change_;

    std::optional<std::int64_t> shownSecond_;
    std::optional<std::int64_t> shownOffset_;
};

} // namespace Ostrel
