#include "OstrelEngine/Players/MediaPlayerPayload.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace Ostrel::MediaPlayerPayload {

namespace {

using JSON = nlohmann::json;

/// Zero for what is no number that one can count with.
double finite(std::optional<double> value) {
    return value && std::isfinite(*value) ? *value : 0;
}

/// A script writes a number as its user does, perhaps with a comma.
double parseNumber(std::string_view text) {
    text = trimmed(text);
    if (const auto value = Ostrel::parseDouble(text))
        return finite(value);
    return finite(Ostrel::parseDouble(replacingOccurrences(text, ",", ".")));
}

std::string stringField(const JSON& object, const char* key) {
    const auto field = object.find(key);
    if (field == object.end())
        return {};
    switch (field->type()) {
    case JSON::value_t::string:
        return field->get<std::string>();
    case JSON::value_t::boolean:
        return field->get<bool>() ? "1" : "0";
    case JSON::value_t::number_integer:
    case JSON::value_t::number_unsigned:
        return field->dump();
    case JSON::value_t::number_float:
        return formatGeneral(field->get<double>(), 16);
    default:
        return {};
    }
}

double doubleField(const JSON& object, const char* key) {
    const auto field = object.find(key);
    if (field == object.end())
        return 0;
    if (field->is_string())
        return parseNumber(field->get_ref<const std::string&>());
    if (field->is_boolean())
        return field->get<bool>() ? 1 : 0;
    return field->is_number() ? finite(field->get<double>()) : 0;
}

std::int64_t intField(const JSON& object, const char* key) {
    const auto field = object.find(key);
    if (field != object.end() && field->is_string()) {
        if (const auto integer = parseInteger(field->get_ref<const std::string&>()))
            return *integer;
    }
    return numericAsInt64(doubleField(object, key));
}

double percent(double value) {
    return std::clamp(value, 0.0, 100.0);
}

/// A player that does not tell how far it is tells it all the same by its times.
double progressOf(double told, const MediaPlayerState& state) {
    if (told > 0)
        return percent(told);
    return state.duration > 0 ? percent(state.position / state.duration * 100) : 0;
}

std::vector<std::string_view> splitAtMarks(std::string_view text) {
    constexpr std::string_view Mark = "|~|";
    std::vector<std::string_view> parts;
    for (auto at = text.find(Mark); at != std::string_view::npos; at = text.find(Mark)) {
        parts.push_back(text.substr(0, at));
        text.remove_prefix(at + Mark.size());
    }
    parts.push_back(text);
    return parts;
}

} // namespace

std::optional<MediaPlayerState> parseJSONState(std::string_view text) {
    const auto object = JSON::parse(text, nullptr, false);
    if (!object.is_object())
        return std::nullopt;
    MediaPlayerState state;
    state.status = 1;
    state.artist = stringField(object, "artist");
    state.title = stringField(object, "title");
    state.album = stringField(object, "album");
    state.genre = stringField(object, "genre");
    state.lyrics = stringField(object, "lyrics");
    state.duration = std::max(0.0, doubleField(object, "duration"));
    state.position = std::max(0.0, doubleField(object, "position"));
    state.progress = progressOf(doubleField(object, "progress"), state);
    state.state = std::clamp<std::int64_t>(intField(object, "state"), 0, 2);
    state.volume = percent(doubleField(object, "volume"));
    state.shuffle = intField(object, "shuffle") != 0 ? 1 : 0;
    state.repeatMode = intField(object, "repeatMode") != 0 ? 1 : 0;
    state.rating = std::clamp<std::int64_t>(intField(object, "rating"), 0, 5);
    state.coverArtPath = stringField(object, "coverArtPath");
    state.filePath = stringField(object, "filePath");
    state.trackNumber = std::max<std::int64_t>(0, intField(object, "trackNumber"));
    state.year = std::max<std::int64_t>(0, intField(object, "year"));
    state.trackIdentifier = stringField(object, "trackIdentifier");
    return state;
}

std::optional<MediaPlayerState> parseLegacyDelimitedState(std::string_view text) {
    constexpr std::size_t FewestParts = 11;
    const auto parts = splitAtMarks(text);
    if (parts.size() < FewestParts)
        return std::nullopt;
    const auto string = [&](std::size_t i) { return i < parts.size() ? std::string(parts[i]) : std::string(); };
    const auto integer = [&](std::size_t i) { return i < parts.size() ? parseInteger(parts[i]).value_or(0) : 0; };
    MediaPlayerState state;
    state.status = 1;
    state.artist = string(0);
    state.title = string(1);
    state.album = string(2);
    state.genre = string(3);
    state.duration = parseNumber(parts[4]);
    state.position = parseNumber(parts[5]);
    state.progress = percent(parseNumber(parts[6]));
    state.state = integer(7);
    state.volume = percent(parseNumber(parts[8]));
    state.shuffle = integer(9);
    state.repeatMode = integer(10);
    state.trackNumber = integer(11);
    state.year = integer(12);
    state.rating = std::clamp<std::int64_t>(integer(13), 0, 5);
    state.coverArtPath = string(14);
    state.filePath = string(15);
    state.lyrics = string(16);
    state.trackIdentifier = string(17);
    return state;
}

} // namespace Ostrel::MediaPlayerPayload
