#include "OstrelEngine/Meters/DecodedPictureColors.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelEngine/Meters/ImageAverage.h"
#include "OstrelEngine/Meters/ImageLoader.h"

#include <QImage>

#include <sys/stat.h>

#include <optional>
#include <string>

namespace Ostrel {

namespace {

/// A skin may name another picture at every tick.
constexpr std::size_t MostEntries = 64;

std::int64_t nanoseconds(const timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

} // namespace

std::optional<DecodedPictureColors::Stamp> DecodedPictureColors::stampOf(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return Stamp{
        status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

std::optional<RGBColor> DecodedPictureColors::average(const std::string& path) {
    auto stamp = stampOf(path);
    if (!stamp)
        stamp = stampOf(existingPath(path));
    if (!stamp)
        return std::nullopt;
    const auto known = entries_.find(path);
    if (known != entries_.end() && known->second.stamp == *stamp)
        return known->second.color;
    if (known == entries_.end() && entries_.size() >= MostEntries)
        entries_.clear();
    // Taken before the file is read: what changes meanwhile is seen as a change the next time.
    ++decodedFiles_;
    const auto color = averageColor(ImageLoader::loadStoredColors(path));
    entries_.insert_or_assign(path, Entry{*stamp, color});
    return color;
}

} // namespace Ostrel
