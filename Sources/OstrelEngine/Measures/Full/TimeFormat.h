#pragma once

#include "OstrelEngine/Measures/Full/WallTime.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class TimeLocale;

/// A text with codes such as "%H:%M", cut once. All other text stays as it is, and so does a code without a meaning.
class TimeFormat {
public:
    explicit TimeFormat(std::string_view format);

    /// What codes can ask for beside the moment itself.
    struct Zone {
        /// East of Greenwich.
        std::int64_t offsetSeconds = 0;
        std::string name;
    };
    std::string text(const WallTime& time, const TimeLocale& locale, const Zone& zone) const;
    bool showsZone() const;

    /// Reads a date that was written after this format, the other way round: names in any case, blanks of any number.
    /// A part that the format does not name is that of 1900-01-01 00:00:00. Absent when the text does not fit.
    std::optional<WallTime> parse(std::string_view text, const TimeLocale& locale) const;

private:
    struct Piece {
        /// 0 for `literal`.
        char code = 0;
        /// Written with "#".
        bool isShort = false;
        std::string literal;
    };

    void append(
        const Piece& piece, const WallTime& time, const TimeLocale& locale, const Zone& zone, std::string& text) const;

    std::vector<Piece> pieces_;
};

} // namespace Ostrel
