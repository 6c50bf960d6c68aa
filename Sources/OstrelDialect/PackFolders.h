#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// Where a skin file lies in its pack, and where the pack may keep data. Paths are absolute, use "/" and, where they
/// name a folder, end in one.
struct PackFolders {
    /// The skin file.
    std::string skinFile;
    /// Its folder: CURRENTPATH.
    std::string skinFolder;
    /// ROOTCONFIGPATH.
    std::string root;
    /// Parent of `root`: SKINSPATH.
    std::string skins;
    /// `@Resources` of the root, which may be missing.
    std::string resources;
    /// The pack's own writable folder, which may be missing until something is written: SETTINGSPATH.
    std::string settings;
    /// Last component of `root`: ROOTCONFIG.
    std::string rootConfig;
    /// The skin's folder as a path from `skins`, with "\" between components: CURRENTCONFIG.
    std::string config;

    /// The root of a skin file: below the nearest folder named "Skins", else the outermost folder with "@Resources"
    /// that is not above `openedFolder`, else `openedFolder`, else the file's own folder. `rootOverride` wins over all.
    static PackFolders find(const std::string& skinFile, std::optional<std::string_view> openedFolder,
        std::optional<std::string_view> rootOverride, const std::string& settingsBase);

    /// Where packs keep their data: below the user's data folder (XDG Base Directory Specification).
    static std::string settingsBaseOfUser();

    /// The value of a built-in path variable; absent when the name is none of them.
    std::optional<std::string> variable(std::string_view name) const;
    /// A path option as an absolute path: relative to the skin's folder, either separator, "..", looked up without
    /// case.
    std::string absolutePath(std::string_view path) const;
    /// Whether an absolute path, its links resolved, lies in the pack or in its settings folder.
    bool isInPack(std::string_view path) const;
};

} // namespace Ostrel
