#pragma once

#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Where a skin lies within its pack.
namespace Ostrel {

struct PackageInfo {
    std::string package;
    /// Of the skin within the package.
    std::string relativePath;

    friend bool operator==(const PackageInfo&, const PackageInfo&) = default;
};

/// Paths and "file:" URLs become standardized paths; blank text stays empty.
std::string normalizeSkinPath(std::string_view text);
/// The pack is the folder below the last folder "Skins", ignoring case, else the folder that the file is in.
PackageInfo packageInfoForPath(std::string_view path);
std::string packageRootPath(std::string_view path);

/// The skins of packs. Each pack's folder is read once in the life of the object.
class SkinPacks {
public:
    /// The given skins, normalized, and all others of their packs, each once.
    std::set<std::string> withRelated(std::span<const std::string> paths);

private:
    void addRelated(const std::string& path, std::set<std::string>& result);

    std::set<std::string> readRoots_;
};

} // namespace Ostrel
