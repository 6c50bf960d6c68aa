#include "OstrelCLI/Scenario.h"

#include "OstrelCLI/HeadlessSkin.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <array>
#include <cmath>
#include <utility>

namespace Ostrel {

namespace {

using Run = std::function<void(HeadlessSkin& skin)>;

/// A kind of line: its first word, and what makes the rest of it, without the one blank between, into something to run;
/// nothing when the rest is not as it should be.
struct LineKind {
    std::string_view word;
    Run (*parse)(std::string_view rest);
};

Run parseAudio(std::string_view rest) {
    std::string path(trimmed(rest));
    if (path.empty())
        return nullptr;
    return [path = std::move(path)](HeadlessSkin& skin) { skin.playAudio(path); };
}

Run parseTick(std::string_view rest) {
    const auto text = trimmed(rest);
    const auto count = text.empty() ? std::optional<std::int64_t>(1) : parseInteger(text);
    if (!count || *count < 0)
        return nullptr;
    return [count = *count](HeadlessSkin& skin) {
        for (std::int64_t i = 0; i < count; ++i)
            skin.tick();
    };
}

Run parseWait(std::string_view rest) {
    const auto seconds = parseDouble(trimmed(rest));
    if (!seconds || !std::isfinite(*seconds) || *seconds < 0)
        return nullptr;
    return [seconds = *seconds](HeadlessSkin& skin) { skin.wait(seconds); };
}

Run parseState(std::string_view rest) {
    return trimmed(rest).empty() ? [](HeadlessSkin&) {} : Run();
}

/// Runs what a line means for the skin, with all that the skin puts off until later.
template <typename Happening> Run happening(Happening body) {
    return [body = std::move(body)](HeadlessSkin& skin) { skin.act([&] { body(skin); }); };
}

Run parsePlayer(std::string_view rest) {
    std::string answer(trimmed(rest));
    if (answer.empty())
        return nullptr;
    if (answer == "NOT_RUNNING" || answer == "STOPPED")
        return [answer = std::move(answer)](HeadlessSkin& skin) { skin.player().setAnswer(answer); };
    return [path = std::move(answer)](HeadlessSkin& skin) { skin.answerPollsFrom(path); };
}

/// `count` finite numbers between blanks, nothing else.
std::optional<std::vector<double>> parseNumbers(std::string_view rest, std::size_t count) {
    std::vector<double> numbers;
    for (const auto word : splitDroppingEmpty(trimmed(rest), ' ')) {
        const auto number = parseDouble(word);
        if (!number || !std::isfinite(*number))
            return std::nullopt;
        numbers.push_back(*number);
    }
    return numbers.size() == count ? std::optional(std::move(numbers)) : std::nullopt;
}

void mouseMoved(CanvasInput& input, Point point) {
    input.mouseMoved(point);
}

void mouseDown(CanvasInput& input, Point point) {
    input.mouseDown(point);
}

void mouseDragged(CanvasInput& input, Point point) {
    input.mouseDragged(point);
}

void mouseUp(CanvasInput& input, Point point) {
    input.mouseUp(point);
}

using PointerCall = void (*)(CanvasInput& input, Point point);

/// A line that calls `Handle` with a point.
template <PointerCall Handle> Run parsePointer(std::string_view rest) {
    const auto numbers = parseNumbers(rest, 2);
    if (!numbers)
        return nullptr;
    return happening(
        [point = Point{(*numbers)[0], (*numbers)[1]}](HeadlessSkin& skin) { Handle(skin.input(), point); });
}

template <bool IsCommandHeld> Run parseScroll(std::string_view rest) {
    const auto numbers = parseNumbers(rest, 3);
    if (!numbers)
        return nullptr;
    ScrollEvent event;
    event.point = {(*numbers)[0], (*numbers)[1]};
    event.delta = (*numbers)[2];
    event.isCommandHeld = IsCommandHeld;
    return happening([event](HeadlessSkin& skin) { skin.input().scrollWheel(event); });
}

Run parseDo(std::string_view rest) {
    return happening([action = std::string(rest)](HeadlessSkin& skin) { skin.skin().executeActionString(action); });
}

Run parseInput(std::string_view rest) {
    return happening([text = std::string(rest)](HeadlessSkin& skin) { skin.input().submitActiveInput(text); });
}

Run parseCancel(std::string_view rest) {
    if (!trimmed(rest).empty())
        return nullptr;
    return happening([](HeadlessSkin& skin) { skin.input().dismissActiveInputByUser(); });
}

Run parseLeave(std::string_view rest) {
    if (!trimmed(rest).empty())
        return nullptr;
    return happening([](HeadlessSkin& skin) { skin.input().mouseExited(); });
}

constexpr std::array LineKinds{
    LineKind{"audio", parseAudio},
    LineKind{"cancel", parseCancel},
    LineKind{"commandscroll", parseScroll<true>},
    LineKind{"do", parseDo},
    LineKind{"down", parsePointer<mouseDown>},
    LineKind{"drag", parsePointer<mouseDragged>},
    LineKind{"input", parseInput},
    LineKind{"leave", parseLeave},
    LineKind{"move", parsePointer<mouseMoved>},
    LineKind{"player", parsePlayer},
    LineKind{"scroll", parseScroll<false>},
    LineKind{"state", parseState},
    LineKind{"tick", parseTick},
    LineKind{"up", parsePointer<mouseUp>},
    LineKind{"wait", parseWait},
};

/// "X Y" or "X Y button".
std::optional<std::pair<Point, PointerButton>> parsePress(std::string_view rest) {
    constexpr std::array Names{"left", "right", "middle", "x1", "x2"};
    auto button = PointerButton::left;
    rest = trimmed(rest);
    const auto last = rest.substr(rest.find_last_of(' ') + 1);
    for (std::size_t i = 0; i < Names.size(); ++i) {
        if (last != Names[i])
            continue;
        button = static_cast<PointerButton>(i);
        rest.remove_suffix(last.size());
    }
    const auto numbers = parseNumbers(rest, 2);
    return numbers ? std::optional(std::pair(Point{(*numbers)[0], (*numbers)[1]}, button)) : std::nullopt;
}

template <bool IsDouble> Run parseDown(std::string_view rest) {
    const auto press = parsePress(rest);
    if (!press)
        return nullptr;
    return happening([press = *press](HeadlessSkin& skin) {
        skin.input().mouseDown(press.first, {press.second, IsDouble});
    });
}

Run parseUp(std::string_view rest) {
    const auto press = parsePress(rest);
    if (!press)
        return nullptr;
    return happening([press = *press](HeadlessSkin& skin) { skin.input().mouseUp(press.first, press.second); });
}

template <bool IsFocused> Run parseFocus(std::string_view rest) {
    if (!trimmed(rest).empty())
        return nullptr;
    return happening([](HeadlessSkin& skin) { skin.fullSkin()->focusDidChange(IsFocused); });
}

Run parsePlace(std::string_view rest) {
    const auto numbers = parseNumbers(rest, 2);
    if (!numbers)
        return nullptr;
    return happening([x = static_cast<int>((*numbers)[0]), y = static_cast<int>((*numbers)[1])](
                         HeadlessSkin& skin) { skin.place(x, y); });
}

Run parseBang(std::string_view rest) {
    const auto blank = rest.find(' ');
    if (blank == std::string_view::npos || blank == 0)
        return nullptr;
    return happening([config = std::string(rest.substr(0, blank)), action = std::string(rest.substr(blank + 1))](
                         HeadlessSkin& skin) { skin.fullSkin()->runFromConfig(config, action); });
}

/// These come first in the full dialect.
constexpr std::array FullLineKinds{
    LineKind{"bang", parseBang},
    LineKind{"double", parseDown<true>},
    LineKind{"down", parseDown<false>},
    LineKind{"focus", parseFocus<true>},
    LineKind{"place", parsePlace},
    LineKind{"unfocus", parseFocus<false>},
    LineKind{"up", parseUp},
};

std::optional<ScenarioStep> parseLine(std::string_view line, bool isFull) {
    const auto blank = line.find(' ');
    const auto rest = blank == std::string_view::npos ? std::string_view() : line.substr(blank + 1);
    if (isFull) {
        for (const auto& kind : FullLineKinds) {
            if (kind.word != line.substr(0, blank))
                continue;
            auto run = kind.parse(rest);
            return run ? std::optional(ScenarioStep{std::string(line), std::move(run)}) : std::nullopt;
        }
    }
    for (const auto& kind : LineKinds) {
        if (kind.word != line.substr(0, blank))
            continue;
        if (auto run = kind.parse(rest))
            return ScenarioStep{std::string(line), std::move(run)};
        break;
    }
    return std::nullopt;
}

} // namespace

std::optional<std::vector<ScenarioStep>> parseScenario(std::string_view text, bool isFull) {
    std::vector<ScenarioStep> steps;
    for (auto line : split(text, '\n')) {
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (trimmed(line).empty() || line.starts_with('#'))
            continue;
        auto step = parseLine(line, isFull);
        if (!step)
            return std::nullopt;
        steps.push_back(std::move(*step));
    }
    return steps;
}

} // namespace Ostrel
