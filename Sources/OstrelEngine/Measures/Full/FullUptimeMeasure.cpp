#include "OstrelEngine/Measures/Full/FullUptimeMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Ostrel {

namespace {

constexpr std::size_t MaximumPieces = 256;
constexpr std::int64_t MaximumWidth = 100;
constexpr int Days = 4;
constexpr int Hours = 3;
constexpr int Minutes = 2;

} // namespace

void FullUptimeMeasure::update() {
    if (optionsDidChange()) {
        readFormat();
        const auto written = text("SecondsValue"_key);
        seconds_ = written.empty() ? std::nullopt : OptionValues::number(written);
    }
    const double seconds = std::floor(seconds_.value_or(host().platform().clock.uptimeSeconds()));
    publishText(shown(std::max<std::int64_t>(0, numericAsInt64(seconds))), seconds);
}

/// "%4!i!d %3!02i!": a code may be followed by its zero-padded width.
void FullUptimeMeasure::readFormat() {
    pieces_.clear();
    auto rest = text("Format"_key, "%4!i!d %3!i!:%2!02i!");
    Piece literal;
    const auto flush = [&] {
        if (!literal.literal.empty())
            pieces_.push_back(std::exchange(literal, {}));
    };
    while (!rest.empty()) {
        const bool isCode = rest.size() > 1 && rest[0] == '%' && rest[1] >= '1' && rest[1] <= '4';
        if (!isCode || pieces_.size() >= MaximumPieces) {
            literal.literal += rest.front();
            rest.remove_prefix(1);
            continue;
        }
        flush();
        Piece piece{rest[1] - '0', 0, ' ', {}};
        rest.remove_prefix(2);
        const auto end = rest.starts_with('!') ? rest.find('!', 1) : std::string_view::npos;
        if (end != std::string_view::npos) {
            auto width = rest.substr(1, end - 1);
            rest.remove_prefix(end + 1);
            if (!width.empty() && !isASCIIDigit(width.back()))
                width.remove_suffix(1);
            piece.padding = width.starts_with('0') ? '0' : ' ';
            piece.width = static_cast<int>(std::clamp<std::int64_t>(parseInteger(width).value_or(0), 0, MaximumWidth));
        }
        pieces_.push_back(std::move(piece));
    }
    flush();
    const bool showsDays = std::ranges::any_of(pieces_, [](const Piece& piece) { return piece.unit == Days; });
    addsDaysToHours_ = isOn("AddDaysToHours"_key, true) && !showsDays;
}

std::string FullUptimeMeasure::shown(std::int64_t seconds) const {
    const auto value = [&](int unit) {
        switch (unit) {
        case Days:
            return seconds / 86400;
        case Hours:
            return addsDaysToHours_ ? seconds / 3600 : seconds / 3600 % 24;
        case Minutes:
            return seconds / 60 % 60;
        default:
            return seconds % 60;
        }
    };
    std::string result;
    for (const auto& piece : pieces_) {
        if (piece.unit == 0) {
            result += piece.literal;
            continue;
        }
        const auto digits = formatInteger(value(piece.unit));
        const auto width = static_cast<std::size_t>(piece.width);
        result.append(width - std::min(width, digits.size()), piece.padding);
        result += digits;
    }
    return result;
}

} // namespace Ostrel
