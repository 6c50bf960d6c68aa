#include "OstrelDialect/LiteralMarks.h"

#include <algorithm>

namespace Ostrel::LiteralMarks {

namespace {

/// Whether the byte means nothing to references, actions and lists wherever it stands.
constexpr bool isHarmless(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' || c == '-'
        || c == '_';
}

} // namespace

bool isAt(std::string_view text, std::size_t at, std::string_view mark) {
    return text.substr(at, mark.size()) == mark;
}

std::string marked(std::string_view data) {
    if (std::ranges::all_of(data, isHarmless))
        return std::string(data);
    std::string text;
    text.reserve(data.size() + Open.size() + Close.size());
    text += Open;
    text += data.find(Lead) == std::string_view::npos ? std::string(data) : dropped(data);
    text += Close;
    return text;
}

std::string dropped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        result += c;
        // Looks back, since the bytes around a mark in broken UTF-8 may make up another one.
        if ((c == Open.back() || c == Close.back()) && (result.ends_with(Open) || result.ends_with(Close)))
            result.resize(result.size() - Open.size());
    }
    return result;
}

std::size_t regionEnd(std::string_view text, std::size_t at) {
    if (!isAt(text, at, Open))
        return at;
    const auto close = text.find(Close, at);
    return close == std::string_view::npos ? text.size() : close + Close.size();
}

} // namespace Ostrel::LiteralMarks
