#include "OstrelEngine/Full/SkinLog.h"

#include "OstrelPlatform/Clock.h"

#include <utility>

namespace Ostrel {

namespace {

constexpr double QuietSeconds = 60;
constexpr std::size_t MaxTexts = 1000;
constexpr std::size_t MaxLength = 2000;

} // namespace

void SkinLog::write(LogLevel level, std::string_view section, std::string_view text) {
    text = text.substr(0, MaxLength);
    std::string key(section);
    key += '\n';
    key += text;
    const double now = clock_.uptimeSeconds();
    if (times_.size() >= MaxTexts)
        std::erase_if(times_, [&](const auto& entry) { return now - entry.second >= QuietSeconds; });
    if (times_.size() >= MaxTexts)
        return;
    const auto [entry, isNew] = times_.try_emplace(std::move(key), now);
    if (!isNew && now - entry->second < QuietSeconds)
        return;
    entry->second = now;
    host_.log(level, section, text);
}

} // namespace Ostrel
