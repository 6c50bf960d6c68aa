#pragma once

#include "OstrelEngine/Measures/Full/WallTime.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>

namespace Ostrel {

/// How a language writes dates. English needs no tables of ICU.
class TimeLocale {
public:
    virtual ~TimeLocale() = default;

    std::array<std::string, 7> weekdays, shortWeekdays;
    std::array<std::string, 12> months, shortMonths;
    std::string am, pm;

    enum class Style { Short, Long };
    virtual std::string date(const WallTime& time, Style style) const = 0;
    virtual std::string time(const WallTime& time) const = 0;
    virtual std::string dateAndTime(const WallTime& time, Style style) const = 0;

    static std::shared_ptr<const TimeLocale> english();
    /// "de-DE", "deu", "German_Germany.1252", "Local" for the machine's. Null for a name that means nothing.
    static std::shared_ptr<const TimeLocale> named(std::string_view name);
    static std::shared_ptr<const TimeLocale> ofMachine();

    /// The long name of the machine's zone in English, of its summer or its standard time.
    static std::string zoneName(bool isSummer);
};

} // namespace Ostrel
