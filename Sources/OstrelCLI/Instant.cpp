#include "OstrelCLI/Instant.h"

#include "OstrelCore/Text/Numbers.h"

#include <algorithm>
#include <chrono>

namespace Ostrel {

namespace {

/// Takes fixed pieces off the front of a text; once one does not fit, everything after is absent too.
class Reader {
public:
    explicit Reader(std::string_view text)
        : text_(text) { }

    int digits(std::size_t count) {
        const auto piece = text_.substr(0, count);
        if (piece.size() < count || piece.find_first_not_of("0123456789") != std::string_view::npos) {
            failed_ = true;
            return 0;
        }
        text_.remove_prefix(count);
        return static_cast<int>(*parseInteger(piece));
    }

    bool take(char c) {
        if (!text_.starts_with(c))
            return false;
        text_.remove_prefix(1);
        return true;
    }

    void expect(char c) { failed_ = !take(c) || failed_; }

    /// The digits behind a decimal point, if there is one.
    double fraction() {
        if (!text_.starts_with('.'))
            return 0;
        const auto end = std::min(text_.find_first_not_of("0123456789", 1), text_.size());
        const auto value = parseDouble(text_.substr(0, end));
        failed_ = failed_ || !value;
        text_.remove_prefix(end);
        return value.value_or(0);
    }

    /// Seconds east of UTC.
    int zone() {
        if (take('Z'))
            return 0;
        const bool isWest = take('-');
        if (!isWest)
            expect('+');
        const int hours = digits(2);
        expect(':');
        const int seconds = hours * 3600 + digits(2) * 60;
        return isWest ? -seconds : seconds;
    }

    bool isDone() const { return !failed_ && text_.empty(); }

private:
    std::string_view text_;
    bool failed_ = false;
};

} // namespace

std::optional<double> parseInstant(std::string_view text) {
    Reader reader(text);
    const std::chrono::year year(reader.digits(4));
    reader.expect('-');
    const std::chrono::month month(static_cast<unsigned>(reader.digits(2)));
    reader.expect('-');
    const std::chrono::day day(static_cast<unsigned>(reader.digits(2)));
    reader.expect('T');
    const int hours = reader.digits(2);
    reader.expect(':');
    const int minutes = reader.digits(2);
    reader.expect(':');
    const int seconds = reader.digits(2);
    const double fraction = reader.fraction();
    const int zone = reader.zone();
    const std::chrono::year_month_day date(year, month, day);
    if (!reader.isDone() || !date.ok() || hours > 23 || minutes > 59 || seconds > 60)
        return std::nullopt;
    const auto days = std::chrono::sys_days(date).time_since_epoch().count();
    return static_cast<double>(days) * 86400.0 + hours * 3600 + minutes * 60 + seconds - zone + fraction;
}

} // namespace Ostrel
