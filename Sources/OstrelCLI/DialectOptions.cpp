#include "OstrelCLI/DialectOptions.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <cstddef>
#include <cstdint>

namespace Ostrel {

namespace {

std::optional<int> screenLength(std::string_view text) {
    constexpr std::int64_t Longest = 100000;
    const auto length = parseInteger(text);
    return length && *length > 0 && *length <= Longest ? std::optional(static_cast<int>(*length)) : std::nullopt;
}

bool setScreen(DialectOptions& options, std::string_view text) {
    const auto lengths = split(text, ',');
    if (lengths.size() != 2)
        return false;
    const auto width = screenLength(trimmed(lengths[0]));
    const auto height = screenLength(trimmed(lengths[1]));
    if (!width || !height)
        return false;
    options.screenWidth = *width;
    options.screenHeight = *height;
    return true;
}

bool setAllowed(DialectOptions& options, std::string_view text) {
    options.allowed = {.scripts = false};
    for (const auto item : splitDroppingEmpty(text, ',')) {
        const auto kind = trimmed(item);
        if (kind == "all")
            options.allowed = {true, true, true, true};
        else if (kind == "scripts")
            options.allowed.scripts = true;
        else if (kind == "web")
            options.allowed.web = true;
        else if (kind == "programs")
            options.allowed.programs = true;
        else if (kind == "files")
            options.allowed.files = true;
        else
            return false;
    }
    return true;
}

bool isFullOption(std::string_view argument) {
    return argument == "--root" || argument == "--screen" || argument == "--allow";
}

bool setOption(DialectOptions& options, std::string_view name, std::string_view value) {
    if (name == "--screen")
        return setScreen(options, value);
    if (name == "--allow")
        return setAllowed(options, value);
    options.root = value;
    return !value.empty();
}

} // namespace

std::optional<DialectOptions> DialectOptions::parse(Arguments arguments, Place place) {
    DialectOptions options;
    if (!arguments.empty() && arguments.front() == "--dialect") {
        if (arguments.size() < 2 || (arguments[1] != "base" && arguments[1] != "full"))
            return std::nullopt;
        options.isFull = arguments[1] == "full";
        arguments = arguments.subspan(2);
    }
    if (!options.isFull) {
        options.rest.assign(arguments.begin(), arguments.end());
        return options;
    }
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const bool mayBeOurs = place == Place::Anywhere || options.rest.empty();
        if (!mayBeOurs || !isFullOption(arguments[i])) {
            options.rest.push_back(arguments[i]);
            continue;
        }
        if (i + 1 == arguments.size() || !setOption(options, arguments[i], arguments[i + 1]))
            return std::nullopt;
        ++i;
    }
    return options;
}

} // namespace Ostrel
