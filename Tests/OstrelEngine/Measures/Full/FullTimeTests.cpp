#include "OstrelCore/Text/Numbers.h"
#include "Support/FakeFullHost.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

namespace Ostrel {

namespace {

/// 2026-11-21 18:04:09 UTC, a Saturday.
constexpr double Saturday = 1795284249;

class FullTime : public testing::Test {
protected:
    FullTime() { setZone("UTC"); }
    ~FullTime() override { setZone("UTC"); }

    void setZone(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
        skin.fake.clock.wall = Saturday;
    }
    std::string text(FakeFullHost::Pairs options) { return skin.addUpdated("T", "Time", options).value().stringValue; }
    std::string format(std::string format) { return text({{"Format", std::move(format)}}); }
    double number(FakeFullHost::Pairs options) { return skin.addUpdated("T", "Time", options).value().numericValue; }

    FakeFullHost skin;
};

} // namespace

TEST_F(FullTime, writesEveryCode) {
    const struct {
        std::string_view format, text;
    } rows[] = {{"%a %A", "Sat Saturday"}, {"%b %h %B", "Nov Nov November"}, {"%d %e", "21 21"}, {"%m", "11"},
        {"%y %Y %C", "26 2026 20"}, {"%g %G %V", "26 2026 47"}, {"%H:%M:%S", "18:04:09"}, {"%I %p", "06 PM"},
        {"%#I %#M %#S", "6 4 9"}, {"%j %#j", "325 325"}, {"%u %w", "6 6"}, {"%U %W", "46 46"}, {"%z", "+0000"},
        {"%T %R", "18:04:09 18:04"}, {"%r", "06:04:09 pm"}, {"%D %F", "11/21/26 2026-11-21"},
        {"%x|%#x", "11/21/26|Saturday, November 21, 2026"}, {"%X", "18:04:09"},
        {"%c|%#c", "Sat Nov 21 18:04:09 2026|Saturday, November 21, 2026, 18:04:09"}, {"%n%t%%", "\n\t%"},
        {"%EY %Od", "2026 21"}, {"the day d of %Q %", "the day d of %Q %"}};
    for (const auto& row : rows)
        EXPECT_EQ(format(std::string(row.format)), row.text) << row.format;
}

TEST_F(FullTime, knowsTheWeeksOfYearsThatBeginInTheMiddle) {
    const struct {
        std::string_view date, weeks;
    } rows[] = {{"2027-01-03", "26 2026 53 01 00 7 0 003"}, {"2024-12-30", "25 2025 01 52 53 1 1 365"},
        {"2000-02-29", "00 2000 09 09 09 2 2 060"}, {"1601-01-01", "01 1601 01 00 01 1 1 001"}};
    for (const auto& row : rows) {
        EXPECT_EQ(text({{"TimeStamp", std::string(row.date)}, {"TimeStampFormat", "%Y-%m-%d"},
                      {"Format", "%g %G %V %U %W %u %w %j"}}),
            row.weeks)
            << row.date;
    }
}

TEST_F(FullTime, countsSecondsOfTheClockThatItShows) {
    setZone("America/New_York");
    constexpr double Since1601 = Saturday + 11644473600;
    EXPECT_EQ(number({}), Since1601 - 5 * 3600);
    EXPECT_EQ(number({{"TimeZone", "0"}}), Since1601);
    EXPECT_EQ(number({{"TimeZone", "(11/2)"}, {"DaylightSavingTime", "0"}}), Since1601 + 19800);
    EXPECT_EQ(number({{"Format", "%H%M"}}), 1304);
    EXPECT_EQ(number({{"Format", "%H:%M"}}), 0) << "the whole text must be a number";
    EXPECT_EQ(number({{"Format", "%A"}}), 0);
    EXPECT_EQ(text({{"TimeZone", "-5"}, {"Format", "%z %Z"}}), "-0500 UTC-5");
    EXPECT_EQ(text({{"Format", "%z %Z"}}), "-0500 Eastern Standard Time");
    EXPECT_EQ(skin.measure("T")->timeStamp(), Since1601 - 5 * 3600);
    // Summer time, which counts in other zones too unless told otherwise.
    skin.fake.clock.wall = Saturday - 150 * 86400.0;
    EXPECT_EQ(text({{"Format", "%H %z"}}), "14 -0400");
    EXPECT_EQ(text({{"Format", "%H"}, {"TimeZone", "0"}}), "19");
    EXPECT_EQ(text({{"Format", "%H"}, {"TimeZone", "0"}, {"DaylightSavingTime", "0"}}), "18");
}

TEST_F(FullTime, readsTimeStamps) {
    setZone("America/New_York");
    const struct {
        std::string stamp, mask, text;
    } rows[] = {{"13253932800", "", "2021-01-01 00:00:00"}, {"(13253932800+60)", "", "2021-01-01 00:01:00"},
        {"DSTNextStart", "", "2027-03-14 02:00:00"}, {"dstnextend", "", "2027-11-07 02:00:00"},
        {"DSTStart", "", "2026-03-08 02:00:00"}, {"DSTEnd2024", "", "2024-11-03 02:00:00"},
        {"Sat, 7 nov 2026 6:05:09 pm", "%a, %d %b %Y %I:%M:%S %p", "2026-11-07 18:05:09"},
        {"2026-11-21T18:04:09Z", "%Y-%m-%dT%H:%M:%SZ", "2026-11-21 18:04:09"},
        {"  3  September", "%d %B", "1900-09-03 00:00:00"}, {"12:30", "%R", "1900-01-01 12:30:00"},
        {"12 am", "%I %p", "1900-01-01 00:00:00"}, {"045 99", "%j %y", "1999-02-14 00:00:00"}};
    for (const auto& row : rows) {
        EXPECT_EQ(text({{"TimeStamp", row.stamp}, {"TimeStampFormat", row.mask}, {"Format", "%F %T"}}), row.text)
            << row.stamp;
    }
    EXPECT_EQ(text({{"TimeStamp", "21 novembre 2026"}, {"TimeStampFormat", "%d %B %Y"}, {"TimeStampLocale", "fr-FR"},
                  {"Format", "%D"}}),
        "11/21/26");
    auto& kept = skin.addUpdated("K", "Time", {{"TimeStamp", "13253932800"}, {"Format", "%F"}});
    const struct {
        std::string stamp, mask;
    } bad[] = {{"-1", ""}, {"9e30", ""}, {"99999999999999", ""}, {"soon", ""}, {"DSTStart1e9", ""}, {"", "%Y"},
        {"2026-02-30", "%Y-%m-%d"}, {"2026", "%Y-%m"}, {"2026x", "%Y"}, {"+0100", "%z"}, {"UTC", "%Z"}};
    for (const auto& row : bad) {
        skin.lines.clear();
        kept.setOption("TimeStamp", row.stamp);
        kept.setOption("TimeStampFormat", row.mask);
        kept.update();
        EXPECT_EQ(kept.value().stringValue, "2021-01-01") << row.stamp;
        EXPECT_EQ(skin.lines.size(), 1U) << row.stamp;
    }
    setZone("UTC");
    EXPECT_EQ(text({{"TimeStamp", "DSTNextStart"}, {"Format", "%F"}}), "") << "a zone without summer time";
}

TEST_F(FullTime, speaksManyLanguages) {
    const struct {
        std::string locale, text;
    } rows[] = {{"de-DE", "Samstag November 21.11.26"}, {"deu", "Samstag November 21.11.26"},
        {"German_Germany.1252", "Samstag November 21.11.26"}, {"fr", "samedi novembre 21/11/2026"},
        {"English_United States.1252", "Saturday November 11/21/26"}, {"ENU", "Saturday November 11/21/26"},
        {"Klingon_Empire", "Saturday November 11/21/26"}, {"", "Saturday November 11/21/26"}};
    for (const auto& row : rows)
        EXPECT_EQ(text({{"Format", "%A %B %x"}, {"FormatLocale", row.locale}}), row.text) << row.locale;
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    EXPECT_EQ(text({{"Format", "%B"}}), "November") << "English unless told otherwise";
    EXPECT_EQ(text({{"Format", "%#x"}, {"FormatLocale", "Local"}}), "Samstag, 21. November 2026");
    EXPECT_EQ(text({{"Format", "locale-date"}, {"FormatLocale", "fr"}}), "21.11.26");
    EXPECT_EQ(text({{"Format", "Locale-Time"}}), "18:04:09");
    unsetenv("LC_ALL");
}

TEST(FullUptime, formatsDaysHoursMinutesSeconds) {
    FakeFullHost skin;
    skin.fake.clock.uptime = 2 * 86400 + 3 * 3600 + 4 * 60 + 5.9;
    const auto text
        = [&skin](FakeFullHost::Pairs options) { return skin.addUpdated("U", "Uptime", options).value().stringValue; };
    EXPECT_EQ(text({}), "2d 3:04");
    EXPECT_EQ(text({{"Format", "%3!02i!:%2!03i!:%1 %5 %"}}), "51:004:5 %5 %");
    EXPECT_EQ(text({{"Format", "%3!i!"}, {"AddDaysToHours", "0"}}), "3");
    EXPECT_EQ(text({{"Format", "%4 %3"}, {"SecondsValue", "(90000*2)"}}), "2 2");
    EXPECT_EQ(text({{"Format", "%1!99999999999i!"}}).size(), 100U) << "the longest";
    EXPECT_EQ(skin.measure("U")->value().numericValue, 183845);
}

} // namespace Ostrel
