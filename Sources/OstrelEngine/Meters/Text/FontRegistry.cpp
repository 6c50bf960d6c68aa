#include "OstrelEngine/Meters/Text/FontRegistry.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/FontRegistrar.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace Ostrel::FontRegistry {

namespace {

namespace fs = std::filesystem;

/// "@Resources" may be any folder above the skin, so the walk ends somewhere.
constexpr std::size_t MostEntriesWalked = 20'000;
constexpr std::size_t MostFontsOfAFolder = 512;

/// Paths seen by this process.
class SeenPaths {
public:
    /// True the first time.
    bool insert(const std::string& path) {
        const std::lock_guard lock(mutex_);
        return paths_.insert(path).second;
    }

private:
    std::mutex mutex_;
    /// Guarded by `mutex_`.
    std::set<std::string> paths_;
};

struct Registry {
    SeenPaths scannedResourcesDirectories;
    SeenPaths registeredFiles;
    std::atomic<std::uint64_t> revision = 0;
};

Registry& registry() {
    static Registry instance;
    return instance;
}

bool isSupportedFontFile(const std::string& path) {
    static constexpr std::array Extensions = {"otf", "ttf", "ttc", "otc", "dfont"};
    const auto extension = lowerCased(pathExtension(path));
    return std::find(Extensions.begin(), Extensions.end(), extension) != Extensions.end();
}

/// The folders that hold the fonts; empty when the resources cannot be listed.
std::vector<fs::path> fontSearchRoots(const std::string& resources) {
    std::error_code failed;
    std::vector<fs::path> roots;
    fs::directory_iterator entry(resources, failed);
    if (failed)
        return roots;
    for (; entry != fs::directory_iterator(); entry.increment(failed)) {
        std::error_code ignored;
        if (lowerCased(entry->path().filename().string()) == "fonts" && entry->is_directory(ignored))
            roots.push_back(entry->path());
    }
    if (roots.empty())
        roots.emplace_back(resources);
    return roots;
}

void appendFontsBelow(const fs::path& root, std::vector<std::string>& fonts) {
    std::error_code failed;
    fs::recursive_directory_iterator entry(root, fs::directory_options::skip_permission_denied, failed);
    for (std::size_t walked = 0; !failed && entry != fs::recursive_directory_iterator(); entry.increment(failed)) {
        if (++walked > MostEntriesWalked || fonts.size() >= MostFontsOfAFolder)
            return;
        std::error_code ignored;
        if (entry->path().filename().string().starts_with('.'))
            entry.disable_recursion_pending();
        else if (isSupportedFontFile(entry->path().string()) && entry->is_regular_file(ignored))
            fonts.push_back(normalizeSeparators(entry->path().string()));
    }
}

/// Sorted, so that of two files with one font name the same one wins in every run.
std::vector<std::string> discoverFonts(const std::string& resources) {
    std::vector<std::string> fonts;
    for (const auto& root : fontSearchRoots(resources))
        appendFontsBelow(root, fonts);
    std::sort(fonts.begin(), fonts.end());
    return fonts;
}

void registerFontIfNeeded(const std::string& path, FontRegistrar& registrar) {
    if (!registry().registeredFiles.insert(path))
        return;
    registrar.registerFontFile(path);
    ++registry().revision;
}

} // namespace

void registerResourceFontsIfNeeded(std::string_view skinPath, FontRegistrar& registrar) {
    const auto skinDirectory = deletingLastPathComponent(normalizeSeparators(skinPath));
    const auto resources = normalizeSeparators(sharedResourcesDirectory(skinDirectory));
    std::error_code failed;
    if (!fs::is_directory(resources, failed) || !registry().scannedResourcesDirectories.insert(resources))
        return;
    for (const auto& path : discoverFonts(resources))
        registerFontIfNeeded(path, registrar);
}

std::uint64_t revision() {
    return registry().revision;
}

} // namespace Ostrel::FontRegistry
