#include "OstrelPlatform/Linux/Host/ProcFigures.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"

#include <algorithm>
#include <array>

namespace Ostrel::ProcFigures {

namespace {

constexpr double BytesPerKibibyte = 1024;

std::string_view takeLine(std::string_view& text) {
    const auto line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    return line;
}

/// The next of the numbers that blanks separate, which is never negative.
std::optional<std::uint64_t> takeNumber(std::string_view& line) {
    line.remove_prefix(std::min(line.size(), line.find_first_not_of(" \t")));
    const auto word = line.substr(0, line.find_first_of(" \t"));
    line.remove_prefix(word.size());
    const auto number = parseInteger(word);
    if (!number || *number < 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(*number);
}

/// As many of the line's numbers as there are up to the first that is none.
template <std::size_t Count> std::size_t takeNumbers(std::string_view line, std::array<std::uint64_t, Count>& numbers) {
    std::size_t taken = 0;
    while (taken < Count) {
        const auto number = takeNumber(line);
        if (!number)
            break;
        numbers[taken++] = *number;
    }
    return taken;
}

/// The lines of /proc/meminfo that matter, in kibibytes.
struct MeminfoLines {
    std::optional<std::uint64_t> total, free, available, buffers, cached, swapTotal, swapFree;

    std::optional<std::uint64_t>* named(std::string_view name) {
        const struct {
            std::string_view name;
            std::optional<std::uint64_t>* value;
        } lines[] = {{"MemTotal", &total}, {"MemFree", &free}, {"MemAvailable", &available}, {"Buffers", &buffers},
            {"Cached", &cached}, {"SwapTotal", &swapTotal}, {"SwapFree", &swapFree}};
        for (const auto& line : lines) {
            if (line.name == name)
                return line.value;
        }
        return nullptr;
    }
};

std::optional<MemoryFigures> figures(
    const std::optional<std::uint64_t>& total, const std::optional<std::uint64_t>& unused) {
    if (!total || !unused)
        return std::nullopt;
    const auto used = *total - std::min(*total, *unused);
    return MemoryFigures{static_cast<double>(used) * BytesPerKibibyte, static_cast<double>(*total) * BytesPerKibibyte};
}

} // namespace

std::optional<CPUTicks> parseStat(std::string_view text) {
    auto line = takeLine(text);
    if (!line.starts_with("cpu "))
        return std::nullopt;
    line.remove_prefix(4);
    std::array<std::uint64_t, 7> numbers{};
    if (takeNumbers(line, numbers) < 4)
        return std::nullopt;
    // Time that a virtual machine's host gave to others is neither load nor rest, and guest time is in `user` already.
    const auto [user, nice, system, idle, ioWait, irq, softIRQ] = numbers;
    return CPUTicks{user, system + irq + softIRQ, idle + ioWait, nice};
}

std::vector<ProcessorTimes> parseProcessors(std::string_view text) {
    constexpr std::size_t MaximumProcessors = 4096;
    std::vector<ProcessorTimes> processors;
    if (!text.starts_with("cpu "))
        return processors;
    while (text.starts_with("cpu")) {
        auto line = takeLine(text);
        line.remove_prefix(3);
        const auto number = line.starts_with(' ') ? std::optional<std::uint64_t>(0) : takeNumber(line);
        std::array<std::uint64_t, 8> numbers{};
        if (!number || takeNumbers(line, numbers) < 4)
            continue;
        const auto position = processors.empty() ? 0 : static_cast<std::size_t>(*number) + 1;
        if (position >= MaximumProcessors || position < processors.size())
            continue;
        processors.resize(position + 1);
        // Guest time is in `user` already.
        const auto [user, nice, system, idle, ioWait, irq, softIRQ, steal] = numbers;
        processors.back() = {user + nice + system + irq + softIRQ + steal, idle + ioWait};
    }
    return processors;
}

Memory parseMeminfo(std::string_view text) {
    MeminfoLines lines;
    while (!text.empty()) {
        auto line = takeLine(text);
        const auto colon = line.find(':');
        if (colon == std::string_view::npos)
            continue;
        auto* value = lines.named(line.substr(0, colon));
        line.remove_prefix(colon + 1);
        if (value)
            *value = takeNumber(line);
    }
    // Kernels before 3.14 do not estimate what is available.
    if (!lines.available && lines.free)
        lines.available = *lines.free + lines.buffers.value_or(0) + lines.cached.value_or(0);
    return {figures(lines.total, lines.available), figures(lines.swapTotal, lines.swapFree)};
}

NetworkBytes parseNetDev(std::string_view text) {
    constexpr std::size_t Received = 0;
    constexpr std::size_t Sent = 8;
    NetworkBytes sum;
    while (!text.empty()) {
        const auto line = takeLine(text);
        // A name may hold colons, and the first number may follow the last one without a blank.
        const auto colon = line.rfind(':');
        if (colon == std::string_view::npos || trimmed(line.substr(0, colon)) == "lo")
            continue;
        std::array<std::uint64_t, Sent + 1> numbers{};
        if (takeNumbers(line.substr(colon + 1), numbers) < numbers.size())
            continue;
        sum.in += numbers[Received];
        sum.out += numbers[Sent];
    }
    return sum;
}

} // namespace Ostrel::ProcFigures
