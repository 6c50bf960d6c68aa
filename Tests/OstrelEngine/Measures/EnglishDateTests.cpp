#include "OstrelEngine/Measures/EnglishDate.h"

#include <gtest/gtest.h>
#include <unicode/smpdtfmt.h>

using namespace Ostrel;

namespace {

std::string byICU(const char* locale, const std::string& pattern, double second) {
    UErrorCode error = U_ZERO_ERROR;
    icu::SimpleDateFormat format(icu::UnicodeString::fromUTF8(pattern), icu::Locale(locale), error);
    icu::UnicodeString text;
    format.format(second * 1000, text);
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes;
}

std::string inEnglish(const EnglishDate& date, double second) {
    const auto time = static_cast<std::time_t>(second);
    std::tm parts{};
    localtime_r(&time, &parts);
    std::string text;
    date.append(parts, text);
    return text;
}

} // namespace

TEST(EnglishDate, writesWhatICUWrites) {
    const std::string patterns[] = {"HH:mm:ss", "h:m:s a", "hh'o''clock'", "EEEE, d MMMM yyyy", "EEE dd.MM.yy", "E M/d",
        "MMM MMMM MM M", "''yyyy'' 'quoted letters' H", "'%'Hß–", "", "dd''MM''''yy", "'never closed"};
    // Midnights, noons, ends of months and years, leap days, far years, and a stride through every hour and weekday.
    std::vector<double> seconds
        = {0, 43199, 43200, 86399, 951782400, 951868799, 1078012800, 4107542399, 32503679999, 253402214399};
    for (double second = 1.7e9; second < 1.74e9; second += 1234567)
        seconds.push_back(second);
    for (const auto& pattern : patterns) {
        const auto date = EnglishDate::create(pattern);
        ASSERT_TRUE(date) << pattern;
        for (const double second : seconds) {
            EXPECT_EQ(inEnglish(*date, second), byICU("en_US", pattern, second)) << pattern << " " << second;
            EXPECT_EQ(inEnglish(*date, second), byICU("en_US_POSIX", pattern, second)) << pattern << " " << second;
        }
    }
}

TEST(EnglishDate, leavesOtherFieldsAlone) {
    for (const auto* pattern : {"yyy", "y", "yyyyy", "MMMMM", "EEEEE", "ddd", "aa", "HHH", "zzz", "HH:mm xx", "w", "k",
             "S", "D 'and' HH", "LLLL", "hhh"})
        EXPECT_FALSE(EnglishDate::create(pattern)) << pattern;
}
