#pragma once

#include "OstrelEngine/Measures/EnglishDate.h"

#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// Text of a moment after a date pattern (Unicode Technical Standard 35), in the locale and time zone of the host.
/// What that needs is made at the first use, and shared. Main thread.
class DateFormatter {
public:
    explicit DateFormatter(std::string_view pattern);

    /// The locale for dates as the environment names it; empty is the same as "C".
    static std::string_view hostLocaleName();

    /// Seconds since 1970-01-01 00:00:00 UTC. Letters without a meaning stay as written. Lives until the
    /// next call.
    const std::string& format(double wallSeconds);

private:
    struct Host;

    void appendEnglish(std::time_t second);
    void appendByICU(double wallSeconds);

    std::string pattern_;
    /// Whether the text can change within a second.
    bool showsFractions_;
    /// Present when it can write the pattern in the host's locale.
    std::optional<EnglishDate> english_;
    std::shared_ptr<Host> host_;
    /// The second that `text_` was made for.
    std::optional<double> formattedSecond_;
    std::string text_;
};

} // namespace Ostrel
