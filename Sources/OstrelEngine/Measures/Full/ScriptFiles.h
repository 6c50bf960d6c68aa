#pragma once

#include "OstrelDialect/PackFolders.h"

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// The files that the scripts of a skin may touch: they read in their pack, in the packs beside it and in the pack's
/// settings folder, and write in the pack and its settings folder. Links are resolved first. Paths have either
/// separator, are relative to the skin's folder, and are looked up without case. Absent and false set `error`.
class ScriptFiles {
public:
    static constexpr std::size_t MaxFileSize = 8U << 20;

    /// `folders` outlives the object.
    explicit ScriptFiles(const PackFolders& folders);

    std::optional<std::string> read(std::string_view path, std::string& error) const;
    bool isWritable(std::string_view path, std::string& error) const { return !writable(path, error).empty(); }
    /// Makes the settings folder when it is missing, and no other.
    bool write(std::string_view path, std::string_view bytes, std::string& error) const;
    /// Files only.
    bool remove(std::string_view path, std::string& error) const;
    bool rename(std::string_view from, std::string_view to, std::string& error) const;

private:
    /// The path without links; empty when it is out of bounds.
    std::string readable(std::string_view path, std::string& error) const;
    std::string writable(std::string_view path, std::string& error) const;
    std::string existingWritable(std::string_view path, std::string& error) const;

    const PackFolders& folders_;
    /// Without links, ending in a separator; empty where there is no such folder.
    std::string root_;
    std::string settings_;
    std::string skins_;
};

} // namespace Ostrel
