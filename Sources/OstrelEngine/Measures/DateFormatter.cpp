#include "OstrelEngine/Measures/DateFormatter.h"

#include <unicode/smpdtfmt.h>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace Ostrel {

namespace {

icu::Locale dateLocale() {
    const auto locale = icu::Locale::createCanonical(std::string(DateFormatter::hostLocaleName()).c_str());
    const std::string_view language = locale.getLanguage();
    return language.empty() || language == "c" || language == "posix" ? icu::Locale("en", "US", "POSIX") : locale;
}

bool isAmericanEnglish() {
    const auto name = DateFormatter::hostLocaleName();
    // A modifier can mean another calendar.
    if (name.find('@') != name.npos)
        return false;
    const auto locale = name.substr(0, name.find('.'));
    return locale.empty() || locale == "en_US" || locale == "C" || locale == "POSIX";
}

/// From the first of 1970 to the last of 9999.
constexpr double FirstEnglishSecond = 0;
constexpr double LastEnglishSecond = 253402214400;

/// ICU formats nothing at all when it meets a letter that means nothing to it; a skin that writes one means the letter.
std::string withUnknownLettersQuoted(std::string_view pattern) {
    constexpr std::string_view Known = "GyYuUrQqMLlwWdDFgEecabBhHKkmsSAzZOvVXx";
    std::string result;
    bool isQuoted = false;
    bool isResultQuoted = false;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        if (c == '\'' && pattern.substr(i + 1).starts_with('\'')) {
            result.append("''");
            ++i;
            continue;
        }
        if (c == '\'') {
            isQuoted = !isQuoted;
            continue;
        }
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool needsQuotes = isQuoted || (isLetter && Known.find(c) == Known.npos);
        if (needsQuotes != isResultQuoted)
            result.push_back('\'');
        isResultQuoted = needsQuotes;
        result.push_back(c);
    }
    if (isResultQuoted)
        result.push_back('\'');
    return result;
}

} // namespace

/// ICU's formatter and its tables of names, some 60 kB. One of them serves all patterns in turn, as long as there is a
/// user of it; taking a pattern costs little beside formatting.
struct DateFormatter::Host {
    UErrorCode error = U_ZERO_ERROR;
    icu::SimpleDateFormat format{icu::UnicodeString(), dateLocale(), error};
    icu::UnicodeString buffer;

    static std::shared_ptr<Host> shared() {
        static std::weak_ptr<Host> current;
        auto host = current.lock();
        if (!host)
            current = host = std::make_shared<Host>();
        return host;
    }
};

/// Dates follow LC_TIME, as everywhere on a desktop; ICU's own default is the language of messages.
std::string_view DateFormatter::hostLocaleName() {
    for (const char* name : {"LC_ALL", "LC_TIME", "LANG"})
        if (const char* value = std::getenv(name); value && *value)
            return value;
    return "";
}

DateFormatter::DateFormatter(std::string_view pattern)
    : pattern_(withUnknownLettersQuoted(pattern))
    , showsFractions_(pattern_.find_first_of("SA") != std::string::npos)
    , english_(isAmericanEnglish() ? EnglishDate::create(pattern_) : std::nullopt) { }

const std::string& DateFormatter::format(double wallSeconds) {
    const double second = std::floor(wallSeconds);
    if (!showsFractions_ && formattedSecond_ == second)
        return text_;
    formattedSecond_ = second;
    text_.clear();
    if (english_ && second >= FirstEnglishSecond && second < LastEnglishSecond)
        appendEnglish(static_cast<std::time_t>(second));
    else
        appendByICU(wallSeconds);
    return text_;
}

void DateFormatter::appendEnglish(std::time_t second) {
    std::tm time{};
    if (localtime_r(&second, &time))
        english_->append(time, text_);
}

void DateFormatter::appendByICU(double wallSeconds) {
    if (!host_)
        host_ = Host::shared();
    auto error = host_->error;
    if (U_FAILURE(error))
        return;
    host_->format.applyPattern(icu::UnicodeString::fromUTF8(pattern_));
    host_->buffer.remove();
    host_->format.format(wallSeconds * 1000, host_->buffer, static_cast<icu::FieldPositionIterator*>(nullptr), error);
    if (U_SUCCESS(error))
        host_->buffer.toUTF8String(text_);
}

} // namespace Ostrel
