#include "OstrelEngine/Measures/Full/ActionTimerMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace Ostrel {

namespace {

constexpr std::size_t MaxRunning = 64;
constexpr std::size_t MaxParts = 10000;
constexpr std::int64_t MaxCount = 100000;
/// Milliseconds: a month.
constexpr std::int64_t LongestWait = 2'678'400'000;
/// Seconds of actions that one turn of the event loop runs.
constexpr double LongestTurn = 0.004;

/// An action that runs `count` times, `wait` seconds after each run but the last; without a name only a wait.
struct Part {
    std::string name;
    double wait = 0;
    std::int64_t count = 1;
};

std::int64_t plainNumber(std::string_view text, std::int64_t most) {
    return std::clamp<std::int64_t>(parseInteger(trimmed(text)).value_or(0), 0, most);
}

double seconds(std::string_view milliseconds) {
    return static_cast<double>(plainNumber(milliseconds, LongestWait)) / 1000;
}

/// What follows the word and blanks; absent when the part begins with another one.
std::optional<std::string_view> behindWord(std::string_view part, std::string_view word) {
    if (!hasPrefixIgnoringCase(part, word) || part.size() == word.size())
        return std::nullopt;
    const auto rest = part.substr(word.size());
    return isWhitespace(static_cast<unsigned char>(rest.front())) ? std::optional(trimmed(rest)) : std::nullopt;
}

std::vector<Part> parseList(std::string_view text) {
    std::vector<Part> parts;
    for (const auto piece : split(text, '|')) {
        const auto part = trimmed(piece);
        if (part.empty() || parts.size() >= MaxParts)
            continue;
        if (const auto wait = behindWord(part, "WAIT")) {
            parts.push_back({{}, seconds(*wait), 1});
        } else if (const auto repeat = behindWord(part, "REPEAT")) {
            const auto items = split(*repeat, ',');
            const auto item = [&](std::size_t i) { return i < items.size() ? trimmed(items[i]) : std::string_view(); };
            parts.push_back({std::string(item(0)), std::max(seconds(item(1)), 0.001), plainNumber(item(2), MaxCount)});
        } else {
            parts.push_back({std::string(part), 0, 1});
        }
    }
    return parts;
}

} // namespace

struct ActionTimerMeasure::List {
    std::vector<Part> parts;
    std::size_t part = 0;
    /// Runs of the present part that are done.
    std::int64_t runs = 0;
    /// Uptime at which the list is, whenever its actions really run: waits add up without drift.
    double due = 0;
    bool isWaiting = false;
};

ActionTimerMeasure::ActionTimerMeasure(const MeasureDefinition& definition, FullMeasureHost& host)
    : FullMeasure(definition, host) {
    publishText("", 0);
}

ActionTimerMeasure::~ActionTimerMeasure() = default;

void ActionTimerMeasure::update() {
    publishText("", 0);
}

void ActionTimerMeasure::readAsZero() {
    running_.clear();
    FullMeasure::readAsZero();
}

bool ActionTimerMeasure::executeCommand(std::string_view command) {
    command = trimmed(command);
    if (const auto number = behindWord(command, "EXECUTE"))
        execute(static_cast<int>(plainNumber(*number, 1'000'000)));
    else if (const auto stopped = behindWord(command, "STOP"))
        running_.erase(static_cast<int>(plainNumber(*stopped, 1'000'000)));
    else
        host().log(LogLevel::Warning, name(), "unknown command " + std::string(command));
    return true;
}

void ActionTimerMeasure::execute(int number) {
    if (running_.contains(number)) {
        if (!isOn("IgnoreWarnings"_key, false))
            host().log(LogLevel::Warning, name(), "list " + formatInteger(number) + " is running already");
        return;
    }
    const auto* written = options().find("ActionList" + formatInteger(number));
    if (!written || running_.size() >= MaxRunning) {
        host().log(LogLevel::Warning, name(),
            written ? "too many lists are running" : "there is no list " + formatInteger(number));
        return;
    }
    auto list = std::make_shared<List>();
    list->parts = parseList(*written);
    list->due = host().platform().clock.uptimeSeconds();
    running_.emplace(number, list);
    advance(number, list);
}

void ActionTimerMeasure::advance(int number, const std::shared_ptr<List>& list) {
    const auto& clock = host().platform().clock;
    const double turnEnd = clock.uptimeSeconds() + LongestTurn;
    while (list->part < list->parts.size()) {
        const auto& part = list->parts[list->part];
        const bool isDone = part.name.empty() ? list->isWaiting : list->runs >= part.count;
        if (isDone) {
            ++list->part;
            list->runs = 0;
            list->isWaiting = false;
            continue;
        }
        const bool needsWait = part.wait > 0 && !list->isWaiting && (part.name.empty() || list->runs > 0);
        if (needsWait) {
            list->isWaiting = true;
            list->due += part.wait;
            if (list->due > clock.uptimeSeconds()) {
                wakeAt(list->due, number, list);
                return;
            }
        }
        if (part.name.empty()) {
            list->isWaiting = true;
            continue;
        }
        if (clock.uptimeSeconds() > turnEnd) {
            wakeAt(0, number, list);
            return;
        }
        list->isWaiting = false;
        ++list->runs;
        if (const auto* action = options().find(part.name)) {
            // A copy: the action may change the option.
            const std::string text = *action;
            host().runAction(*this, text);
        } else {
            host().log(LogLevel::Warning, name(), "there is no action " + part.name);
        }
        const auto found = running_.find(number);
        if (found == running_.end() || found->second != list)
            return;
    }
    running_.erase(number);
}

void ActionTimerMeasure::wakeAt(double uptime, int number, const std::shared_ptr<List>& list) {
    const auto& platform = host().platform();
    platform.mainQueue.postAfter(
        std::max(uptime - platform.clock.uptimeSeconds(), 0.0), [this, number, weak = std::weak_ptr<List>(list)] {
            // The lists end with the measure.
            const auto waiting = weak.lock();
            if (waiting)
                advance(number, waiting);
        });
}

} // namespace Ostrel
