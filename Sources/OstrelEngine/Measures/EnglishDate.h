#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// A date pattern (Unicode Technical Standard 35) of the fields that clocks are made of, in American English. It gives
/// what ICU gives for it, without the megabytes of tables that ICU reads for its first date.
class EnglishDate {
public:
    /// Absent when the pattern holds any other field: year, month, day, weekday, hour, minute, second, half of the day
    /// and quoted text are known.
    static std::optional<EnglishDate> create(std::string_view pattern);

    /// Appends the text of a moment. For the years 1583 to 9999: earlier ones have another calendar.
    void append(const std::tm& time, std::string& text) const;

private:
    struct Piece {
        /// A letter of a pattern, or 0 for `literal`.
        char field = 0;
        int width = 0;
        std::string literal;
    };

    static bool isKnown(const Piece& piece);

    std::vector<Piece> pieces_;
};

} // namespace Ostrel
