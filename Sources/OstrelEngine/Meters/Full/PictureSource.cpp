#include "OstrelEngine/Meters/Full/PictureSource.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Meters/ImageLoader.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace Ostrel {

namespace {

/// Of decoded files, for the next meter that asks for one with other options.
constexpr qsizetype MostBytesKept = 8 << 20;

/// What says that a file is another one.
struct FileStamp {
    std::filesystem::file_time_type time;
    std::uintmax_t size = 0;

    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

std::optional<FileStamp> stampOf(const std::string& path) {
    std::error_code failed;
    FileStamp stamp{std::filesystem::last_write_time(path, failed), 0};
    if (!failed)
        stamp.size = std::filesystem::file_size(path, failed);
    return failed ? std::nullopt : std::optional(stamp);
}

/// The pictures that meters show. Main thread.
class PictureStore {
public:
    /// Null when there is no such picture.
    std::shared_ptr<const QImage> picture(const std::string& path, const PictureOptions& options) {
        const auto stamp = stampOf(path);
        if (!stamp)
            return nullptr;
        auto& pictures = pictures_[path];
        for (const auto& known : pictures) {
            if (known.stamp != *stamp || known.options != options)
                continue;
            if (auto picture = known.picture.lock())
                return picture;
        }
        auto picture = std::make_shared<const QImage>(options.applied(decoded(path, *stamp, options.isUpright)));
        std::erase_if(pictures, [](const Entry& entry) { return entry.picture.expired(); });
        pictures.push_back({*stamp, options, picture});
        if (pictures_.size() > 2 * countAfterCleaning_ + 64)
            clean();
        return picture;
    }

private:
    struct Entry {
        FileStamp stamp;
        PictureOptions options;
        std::weak_ptr<const QImage> picture;
    };
    struct Decoded {
        std::string path;
        FileStamp stamp;
        bool isUpright = false;
        QImage image;
    };

    QImage decoded(const std::string& path, const FileStamp& stamp, bool isUpright) {
        for (const auto& known : decoded_) {
            if (known.path == path && known.stamp == stamp && known.isUpright == isUpright)
                return known.image;
        }
        const auto orientation = isUpright ? ImageLoader::Orientation::Upright : ImageLoader::Orientation::AsStored;
        QImage image = ImageLoader::loadFile(path, orientation);
        std::erase_if(decoded_, [&](const Decoded& known) { return known.path == path; });
        decoded_.push_back({path, stamp, isUpright, image});
        qsizetype bytes = 0;
        for (const auto& known : decoded_)
            bytes += known.image.sizeInBytes() + 256;
        for (; bytes > MostBytesKept; decoded_.pop_front())
            bytes -= decoded_.front().image.sizeInBytes() + 256;
        return image;
    }

    void clean() {
        for (auto& [path, entries] : pictures_)
            std::erase_if(entries, [](const Entry& entry) { return entry.picture.expired(); });
        std::erase_if(pictures_, [](const auto& known) { return known.second.empty(); });
        countAfterCleaning_ = pictures_.size();
    }

    std::map<std::string, std::vector<Entry>> pictures_;
    std::size_t countAfterCleaning_ = 0;
    std::deque<Decoded> decoded_;
};

PictureStore& store() {
    static PictureStore shared;
    return shared;
}

bool isAbsoluteName(std::string_view name) {
    return isAbsolutePath(name) || (name.size() > 1 && name[1] == ':');
}

} // namespace

const QImage PictureSource::NoImage;

std::string PictureSource::pathOf(std::string_view name, std::string_view imagePath, const PackFolders& folders) {
    std::string path(name);
    if (!imagePath.empty() && !isAbsoluteName(name))
        path = std::string(imagePath) + '/' + path;
    const auto component = path.find_last_of("/\\");
    if (path.find('.', component == std::string::npos ? 0 : component) == std::string::npos)
        path += ".png";
    return folders.absolutePath(path);
}

bool PictureSource::setOptions(const Options& options, std::string_view prefix) {
    const auto text = [&](std::string_view key) {
        const auto* value = options.find(std::string(prefix) + std::string(key));
        return value ? trimmed(OptionValues::unquoted(trimmed(*value))) : std::string_view();
    };
    isDynamic_ = OptionValues::isOn(option(options, "DynamicVariables"_key).value_or("")).value_or(false);
    auto parsed = PictureOptions::parse(options, prefix);
    if (kind_ == Kind::Frames) {
        parsed.crop.reset();
        parsed.rotation = 0;
    }
    auto folder = text("ImagePath");
    if (folder.empty() && prefix.empty())
        folder = text("Path");
    if (hasOptions_ && parsed == options_ && folder == folder_)
        return false;
    hasOptions_ = true;
    options_ = std::move(parsed);
    folder_ = folder;
    isShown_ = false;
    path_.clear();
    return true;
}

bool PictureSource::show(std::string_view name) {
    name = trimmed(name);
    if (isShown_ && name == name_ && !isDynamic_)
        return false;
    // A file that was not there may have come since.
    if (name != name_ || path_.empty() || !picture_)
        path_ = name.empty() ? std::string() : pathOf(name, folder_, folders_);
    name_ = name;
    isShown_ = true;
    auto picture = path_.empty() ? nullptr : store().picture(path_, options_);
    const bool isOther = picture != picture_;
    picture_ = std::move(picture);
    return isOther;
}

} // namespace Ostrel
