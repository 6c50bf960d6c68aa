#include "OstrelEngine/Players/PlayerCommandText.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Players/MediaPlayerState.h"

#include <algorithm>
#include <cmath>

namespace Ostrel::PlayerCommandText {

namespace {

using Kind = PlayerCommand::Kind;

struct Verb {
    std::string_view name;
    Kind kind;
};

constexpr Verb Verbs[] = {
    {"play", Kind::Play},
    {"pause", Kind::Pause},
    {"playpause", Kind::PlayPause},
    {"stop", Kind::Stop},
    {"next", Kind::Next},
    {"previous", Kind::Previous},
    {"setposition", Kind::SetPosition},
    {"setvolume", Kind::SetVolume},
    {"setrating", Kind::SetRating},
    {"setshuffle", Kind::SetShuffle},
    {"setrepeat", Kind::SetRepeat},
    {"openplayer", Kind::OpenPlayer},
    {"closeplayer", Kind::ClosePlayer},
    {"toggleplayer", Kind::TogglePlayer},
};

bool hasRelativePrefix(std::string_view text) {
    return text.starts_with('+') || text.starts_with('-');
}

/// Of trimmed text: up to the first blank or line end.
std::string_view firstWord(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const auto [c, length] = decodeCharacter(text, at);
        if (isWhitespace(c) || isNewline(c))
            break;
        at += length;
    }
    return text.substr(0, at);
}

/// Halves away from zero.
std::int64_t rounded(double value) {
    return numericAsInt64(std::round(value));
}

/// A command that needs an amount, if that is one.
template <typename Amount> std::optional<PlayerCommand> with(Kind kind, std::optional<Amount> amount) {
    if (!amount)
        return std::nullopt;
    PlayerCommand command{.kind = kind};
    if constexpr (std::is_same_v<Amount, double>)
        command.seconds = *amount;
    else
        command.value = *amount;
    return command;
}

} // namespace

std::optional<PlayerCommand> resolve(
    std::string_view command, std::string_view playerPath, const MediaPlayerState& state) {
    command = trimmed(command);
    const auto word = firstWord(command);
    const auto argument = trimmed(command.substr(word.size()));
    const auto verb = std::ranges::find(Verbs, lowerCased(word), &Verb::name);
    if (verb == std::end(Verbs))
        return std::nullopt;
    switch (verb->kind) {
    case Kind::SetPosition:
        return with(verb->kind, resolveSetPositionSeconds(argument, state.position, state.duration));
    case Kind::SetVolume:
        return with(verb->kind, resolveSetVolumePercent(argument, state.volume));
    case Kind::SetRating:
        return with(verb->kind, resolveSetRating(argument));
    case Kind::SetShuffle:
        return with(verb->kind, resolveToggleState(argument, state.shuffle));
    case Kind::SetRepeat:
        return with(verb->kind, resolveToggleState(argument, state.repeatMode));
    case Kind::OpenPlayer:
    case Kind::TogglePlayer: {
        const auto path = stripWrappingQuotes(trimmed(playerPath));
        return PlayerCommand{
            .kind = verb->kind, .path = std::string(path.empty() ? stripWrappingQuotes(argument) : path)};
    }
    default:
        return PlayerCommand{.kind = verb->kind};
    }
}

std::optional<double> resolveSetPositionSeconds(std::string_view argument, double currentPosition, double duration) {
    const auto text = trimmed(argument);
    const auto value = parseDouble(text);
    if (!value || !std::isfinite(*value))
        return std::nullopt;
    double seconds = duration > 0 ? *value * duration / 100 : *value;
    if (hasRelativePrefix(text))
        seconds += currentPosition;
    return duration > 0 ? std::clamp(seconds, 0.0, duration) : std::max(0.0, seconds);
}

std::optional<int> resolveSetVolumePercent(std::string_view argument, double currentVolume) {
    const auto text = trimmed(argument);
    const auto value = parseInteger(text);
    if (!value)
        return std::nullopt;
    // Bounded before it is added, so that no text can overflow the sum.
    const auto amount = std::clamp<std::int64_t>(*value, -1000, 1000);
    const auto percent = hasRelativePrefix(text) ? amount + rounded(currentVolume) : amount;
    return static_cast<int>(std::clamp<std::int64_t>(percent, 0, 100));
}

std::optional<int> resolveSetRating(std::string_view argument) {
    const auto value = parseInteger(trimmed(argument));
    return value && *value >= 0 && *value <= 5 ? std::optional(static_cast<int>(*value)) : std::nullopt;
}

std::optional<int> resolveToggleState(std::string_view argument, std::int64_t currentState) {
    const auto value = parseInteger(trimmed(argument));
    if (!value || *value < -1 || *value > 1)
        return std::nullopt;
    return *value == -1 ? (currentState == 0 ? 1 : 0) : static_cast<int>(*value);
}

std::string_view stripWrappingQuotes(std::string_view text) {
    const bool isQuoted = text.size() >= 2 && text.front() == text.back() && (text[0] == '"' || text[0] == '\'');
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

} // namespace Ostrel::PlayerCommandText
