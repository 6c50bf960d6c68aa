#include "OstrelEngine/Measures/Full/TimeLocale.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/DateFormatter.h"
#include "OstrelEngine/Measures/Full/TimeFormat.h"

#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace Ostrel {

namespace {

class EnglishTime final : public TimeLocale {
public:
    EnglishTime() {
        weekdays = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
        months = {"January", "February", "March", "April", "May", "June", "July", "August", "September", "October",
            "November", "December"};
        std::ranges::transform(weekdays, shortWeekdays.begin(), [](const auto& name) { return name.substr(0, 3); });
        std::ranges::transform(months, shortMonths.begin(), [](const auto& name) { return name.substr(0, 3); });
        am = "AM";
        pm = "PM";
    }
    std::string date(const WallTime& moment, Style style) const override {
        return formatted(style == Style::Short ? "%m/%d/%y" : "%A, %B %#d, %Y", moment);
    }
    std::string time(const WallTime& moment) const override { return formatted("%H:%M:%S", moment); }
    std::string dateAndTime(const WallTime& moment, Style style) const override {
        return formatted(style == Style::Short ? "%a %b %d %H:%M:%S %Y" : "%A, %B %#d, %Y, %H:%M:%S", moment);
    }

private:
    std::string formatted(std::string_view format, const WallTime& moment) const {
        return TimeFormat(format).text(moment, *this, {});
    }
};

std::string utf8(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

class ForeignTime final : public TimeLocale {
public:
    explicit ForeignTime(const icu::Locale& locale) {
        auto error = U_ZERO_ERROR;
        const icu::DateFormatSymbols symbols(locale, error);
        if (U_FAILURE(error))
            return;
        using Symbols = icu::DateFormatSymbols;
        std::int32_t count = 0;
        // The names of weekdays begin at 1.
        const auto take = [&count](const icu::UnicodeString* names, auto& into, std::int32_t first) {
            for (std::size_t i = 0; i < into.size() && static_cast<std::int32_t>(i) + first < count; ++i)
                into[i] = utf8(names[static_cast<std::int32_t>(i) + first]);
        };
        take(symbols.getWeekdays(count, Symbols::STANDALONE, Symbols::WIDE), weekdays, 1);
        take(symbols.getWeekdays(count, Symbols::STANDALONE, Symbols::ABBREVIATED), shortWeekdays, 1);
        take(symbols.getMonths(count, Symbols::STANDALONE, Symbols::WIDE), months, 0);
        take(symbols.getMonths(count, Symbols::STANDALONE, Symbols::ABBREVIATED), shortMonths, 0);
        const auto* halves = symbols.getAmPmStrings(count);
        if (count > 1) {
            am = utf8(halves[0]);
            pm = utf8(halves[1]);
        }
        using Format = icu::DateFormat;
        shortDate_ = own(Format::createDateInstance(Format::kShort, locale));
        longDate_ = own(Format::createDateInstance(Format::kFull, locale));
        time_ = own(Format::createTimeInstance(Format::kMedium, locale));
    }
    std::string date(const WallTime& moment, Style style) const override {
        return formatted(style == Style::Short ? shortDate_ : longDate_, moment);
    }
    std::string time(const WallTime& moment) const override { return formatted(time_, moment); }
    std::string dateAndTime(const WallTime& moment, Style style) const override {
        return date(moment, style) + " " + time(moment);
    }

private:
    static std::unique_ptr<icu::DateFormat> own(icu::DateFormat* format) {
        if (format)
            format->setTimeZone(*icu::TimeZone::getGMT());
        return std::unique_ptr<icu::DateFormat>(format);
    }
    static std::string formatted(const std::unique_ptr<icu::DateFormat>& format, const WallTime& moment) {
        const auto seconds = moment.secondsSince1601();
        if (!format || !seconds)
            return {};
        icu::UnicodeString text;
        return utf8(format->format(static_cast<double>(*seconds - SecondsFrom1601To1970) * 1000, text));
    }

    std::unique_ptr<icu::DateFormat> shortDate_, longDate_, time_;
};

bool isAmericanEnglish(const icu::Locale& locale) {
    const std::string_view language = locale.getLanguage();
    const std::string_view country = locale.getCountry();
    const bool isPlain = language.empty() || language == "c" || language == "posix";
    return isPlain || (language == "en" && (country.empty() || country == "US" || country == "POSIX"));
}

std::shared_ptr<const TimeLocale> of(const icu::Locale& locale) {
    if (isAmericanEnglish(locale))
        return TimeLocale::english();
    // Dates are Gregorian for every language.
    const icu::Locale plain(locale.getLanguage(), locale.getCountry(), locale.getVariant(), "calendar=gregorian");
    return std::make_shared<ForeignTime>(plain);
}

/// Names of three letters that are no codes of ISO 639.
constexpr std::pair<std::string_view, const char*> ShortNames[]
    = {{"CHS", "zh_CN"}, {"CHT", "zh_TW"}, {"CSY", "cs_CZ"}, {"DEA", "de_AT"}, {"DES", "de_CH"}, {"ENA", "en_AU"},
        {"ENC", "en_CA"}, {"ENG", "en_GB"}, {"ENU", "en_US"}, {"ESM", "es_MX"}, {"ESN", "es_ES"}, {"ESP", "es_ES"},
        {"FRB", "fr_BE"}, {"FRC", "fr_CA"}, {"FRS", "fr_CH"}, {"NLB", "nl_BE"}, {"NOR", "nb_NO"}, {"PLK", "pl_PL"},
        {"PTB", "pt_BR"}, {"PTG", "pt_PT"}, {"ROM", "ro_RO"}, {"SKY", "sk_SK"}, {"SVE", "sv_SE"}, {"TRK", "tr_TR"}};

/// The code of a language whose English name this is; empty for none.
std::string languageNamed(std::string_view name) {
    for (const char* const* code = icu::Locale::getISOLanguages(); *code; ++code) {
        icu::UnicodeString shown;
        if (equalsIgnoringCase(utf8(icu::Locale(*code).getDisplayLanguage(icu::Locale::getEnglish(), shown)), name))
            return *code;
    }
    return {};
}

std::string countryNamed(std::string_view name) {
    for (const char* const* code = icu::Locale::getISOCountries(); *code; ++code) {
        icu::UnicodeString shown;
        if (equalsIgnoringCase(utf8(icu::Locale("", *code).getDisplayCountry(icu::Locale::getEnglish(), shown)), name))
            return *code;
    }
    return {};
}

bool isKnown(const icu::Locale& locale) {
    icu::UnicodeString shown;
    const std::string_view language = locale.getLanguage();
    return !language.empty() && utf8(locale.getDisplayLanguage(icu::Locale::getEnglish(), shown)) != language;
}

/// "German_Germany.1252"
std::optional<icu::Locale> parseSpelledOut(std::string_view name) {
    name = name.substr(0, name.find('.'));
    const auto separator = name.find('_');
    const auto language = languageNamed(trimmed(name.substr(0, separator)));
    if (language.empty())
        return std::nullopt;
    const auto country
        = separator == std::string_view::npos ? std::string() : countryNamed(trimmed(name.substr(separator + 1)));
    return icu::Locale(language.c_str(), country.c_str());
}

} // namespace

std::shared_ptr<const TimeLocale> TimeLocale::english() {
    static const std::shared_ptr<const TimeLocale> locale = std::make_shared<EnglishTime>();
    return locale;
}

std::shared_ptr<const TimeLocale> TimeLocale::ofMachine() {
    return of(icu::Locale::createCanonical(std::string(DateFormatter::hostLocaleName()).c_str()));
}

std::shared_ptr<const TimeLocale> TimeLocale::named(std::string_view name) {
    constexpr std::size_t LongestName = 100;
    name = trimmed(name);
    if (name.empty() || equalsIgnoringCase(name, "C") || equalsIgnoringCase(name, "EN-US"))
        return english();
    if (equalsIgnoringCase(name, "LOCAL"))
        return ofMachine();
    if (name.size() > LongestName || !isASCII(name))
        return nullptr;
    const auto upper = upperCased(name);
    const auto shortName = std::ranges::find(ShortNames, upper, &std::pair<std::string_view, const char*>::first);
    const auto locale = shortName == std::end(ShortNames) ? icu::Locale::createCanonical(std::string(name).c_str())
                                                          : icu::Locale(shortName->second);
    if (isKnown(locale))
        return of(locale);
    const auto spelledOut = parseSpelledOut(name);
    return spelledOut ? of(*spelledOut) : nullptr;
}

std::string TimeLocale::zoneName(bool isSummer) {
    const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString shown;
    return utf8(zone->getDisplayName(isSummer, icu::TimeZone::LONG, icu::Locale::getEnglish(), shown));
}

} // namespace Ostrel
