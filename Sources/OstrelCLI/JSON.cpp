#include "OstrelCLI/JSON.h"

#include "OstrelCore/Text/Numbers.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Ostrel {

namespace {

/// The library's own text of a double is now and then a digit longer than it need be.
void appendNumber(std::string& text, double value) {
    // From here on a number without exponent is written with all the digits that it has.
    constexpr double ManyDigits = 1e16;
    std::array<char, 32> buffer;
    const auto end = std::abs(value) < ManyDigits
        ? std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr
        : std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific).ptr;
    const std::string_view digits(buffer.data(), end);
    text.append(digits);
    if (digits.find_first_of(".e") == std::string_view::npos)
        text.append(".0");
}

std::string plain(const JSON& json) {
    return json.dump(-1, ' ', false, JSON::error_handler_t::replace);
}

void append(std::string& text, const JSON& json) {
    if (json.is_number_float())
        return appendNumber(text, json.get<double>());
    if (!json.is_structured() || json.empty()) {
        text.append(plain(json));
        return;
    }
    char separator = json.is_object() ? '{' : '[';
    for (const auto& [key, value] : json.items()) {
        text.push_back(separator);
        separator = ',';
        if (json.is_object())
            text.append(plain(JSON(key))).append(":");
        append(text, value);
    }
    text.push_back(json.is_object() ? '}' : ']');
}

} // namespace

JSON jsonNumber(double value) {
    return std::isfinite(value) ? JSON(value) : JSON(formatGeneral(value));
}

JSON jsonText(const std::optional<std::string>& text) {
    return text ? JSON(*text) : JSON(nullptr);
}

JSON jsonPairs(const Options& options) {
    auto pairs = JSON::array();
    for (const auto& option : options)
        pairs.push_back(JSON::array({option.key, option.value}));
    return pairs;
}

std::string printed(const JSON& json) {
    std::string text;
    append(text, json);
    return text;
}

} // namespace Ostrel
