#include "OstrelCLI/RenderOptions.h"

#include "OstrelCLI/Instant.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Meters/ColorParser.h"

namespace Ostrel {

namespace {

// Beyond these a picture has no use or no end.
constexpr double LeastScale = 0.05;
constexpr double MostScale = 20;

bool setTicks(RenderOptions& options, std::string_view value) {
    options.ticks = parseInteger(value);
    return options.ticks && *options.ticks >= 1;
}

bool setScale(RenderOptions& options, std::string_view value) {
    options.scale = parseDouble(value).value_or(0);
    return options.scale >= LeastScale && options.scale <= MostScale;
}

bool setOption(RenderOptions& options, std::string_view name, std::string_view value) {
    if (name == "-o") {
        options.output = value;
        return !options.output.empty();
    }
    if (name == "--ticks")
        return setTicks(options, value);
    if (name == "--scale")
        return setScale(options, value);
    if (name == "--scenario")
        return options.scenario.emplace(value), true;
    if (name == "--background")
        return (options.background = ColorParser::parse(value)).has_value();
    if (name == "--now")
        return (options.wallSeconds = parseInstant(value)).has_value();
    return false;
}

} // namespace

std::optional<RenderOptions> parseRenderOptions(Arguments arguments) {
    RenderOptions options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (isOption(arguments[i]) || arguments[i] == "-o") {
            if (i + 1 == arguments.size() || !setOption(options, arguments[i], arguments[i + 1]))
                return std::nullopt;
            ++i;
        } else if (options.skin.empty()) {
            options.skin = arguments[i];
        } else {
            return std::nullopt;
        }
    }
    return options.skin.empty() || options.output.empty() ? std::nullopt : std::optional(std::move(options));
}

} // namespace Ostrel
