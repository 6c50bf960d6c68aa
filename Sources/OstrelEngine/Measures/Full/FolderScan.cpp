#include "OstrelEngine/Measures/Full/FolderScan.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PackFolders.h"
#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/Full/WallTime.h"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace Ostrel {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t MaximumEntries = 20000;
constexpr auto LongestWalk = std::chrono::seconds(5);
constexpr int MaximumDepth = 32;

std::int64_t shownTime(const timespec& time) {
    return time.tv_sec + LocalZone::offsetAt(time.tv_sec).seconds + SecondsFrom1601To1970;
}

class Walk {
public:
    explicit Walk(const FolderRequest& request)
        : request_(request) { }

    FolderContents run() {
        visit(request_.path, 0);
        return std::move(contents_);
    }

private:
    bool isOver() const { return seen_ >= MaximumEntries || std::chrono::steady_clock::now() - begin_ > LongestWalk; }

    void visit(const fs::path& folder, int depth) {
        std::error_code error;
        auto entry = fs::directory_iterator(folder, fs::directory_options::skip_permission_denied, error);
        for (; !error && entry != fs::directory_iterator() && !isOver(); entry.increment(error))
            take(entry->path(), depth);
    }

    void take(const fs::path& path, int depth) {
        ++seen_;
        FolderEntry entry;
        entry.name = path.filename().string();
        if (!request_.includesHidden && entry.name.starts_with('.'))
            return;
        struct stat information { };
        if (lstat(path.c_str(), &information) != 0)
            return;
        const bool isLink = S_ISLNK(information.st_mode);
        if (isLink && stat(path.c_str(), &information) != 0)
            return;
        entry.path = path.string();
        entry.isFolder = S_ISDIR(information.st_mode);
        entry.size = entry.isFolder ? 0 : static_cast<double>(information.st_size);
        entry.modified = shownTime(information.st_mtim);
        entry.created = shownTime(information.st_ctim);
        entry.accessed = shownTime(information.st_atim);
        (entry.isFolder ? contents_.folderCount : contents_.fileCount) += 1;
        contents_.size += entry.size;
        const bool goesDown = entry.isFolder && !isLink && (request_.isRecursive || request_.listsTree);
        if (depth == 0 ? !(entry.isFolder && request_.listsTree) : !entry.isFolder && request_.listsTree)
            contents_.entries.push_back(std::move(entry));
        if (goesDown && depth < MaximumDepth)
            visit(path, depth + 1);
    }

    const FolderRequest& request_;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    FolderContents contents_;
    std::size_t seen_ = 0;
};

bool isBelow(std::string_view path, std::string_view folder) {
    while (folder.ends_with('/'))
        folder.remove_suffix(1);
    return !folder.empty() && path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

} // namespace

FolderContents scanFolder(const FolderRequest& request) {
    return Walk(request).run();
}

bool mayRead(FullMeasureHost& host, const std::string& path) {
    std::error_code error;
    const auto real = fs::weakly_canonical(path, error).string();
    if (error || real.empty())
        return false;
    if (host.folders().isInPack(real))
        return true;
    constexpr std::string_view Never[] = {"/proc", "/sys", "/dev", "/root", "/etc/ssl/private"};
    constexpr std::string_view Media[] = {"/media", "/mnt", "/run/media"};
    constexpr std::string_view Keys[] = {".ssh", ".gnupg", ".local/share/keyrings", ".mozilla", ".password-store"};
    const char* home = std::getenv("HOME");
    const std::string homeFolder = home ? home : "";
    const auto isKey = [&](std::string_view name) { return isBelow(real, homeFolder + "/" + std::string(name)); };
    if (std::ranges::any_of(Keys, isKey))
        return false;
    if (isBelow(real, homeFolder) || std::ranges::any_of(Media, [&](auto folder) { return isBelow(real, folder); }))
        return true;
    if (std::ranges::any_of(Never, [&](auto folder) { return isBelow(real, folder); }))
        return false;
    return host.isAllowed(Permission::Files, real);
}

bool fitsWildcard(std::string_view name, std::string_view pattern) {
    std::size_t at = 0;
    std::size_t from = 0;
    std::size_t star = std::string_view::npos;
    std::size_t resume = 0;
    while (at < name.size()) {
        if (from < pattern.size() && (pattern[from] == '?' || asciiUpper(pattern[from]) == asciiUpper(name[at]))) {
            ++at;
            ++from;
        } else if (from < pattern.size() && pattern[from] == '*') {
            star = from++;
            resume = at;
        } else if (star != std::string_view::npos) {
            from = star + 1;
            at = ++resume;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', from) == std::string_view::npos;
}

} // namespace Ostrel
