#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

#include <optional>
#include <string>
#include <string_view>

// Which file, folder or URL a skin means by a text in one of its actions.
namespace Ostrel {

/// A drive letter, a colon and a separator.
bool isWindowsAbsolutePath(std::string_view text);

/// Resolves texts of one running skin. Keeps references to the skin's path and variables, which outlive it.
class SkinFileTargets {
public:
    SkinFileTargets(const std::string& skinPath, const Options& variables)
        : skinPath_(skinPath)
        , variables_(variables) { }

    /// `#@#`, `#CURRENTPATH#`, `#CURRENTFILE#` and then each variable in turn, without case. A text that grows beyond
    /// what any path can be is left half expanded.
    std::string expandPathVariables(std::string_view text) const;
    /// The .ini file of a config such as `Pack\Clock`; the skin's own file name stands for a missing one.
    std::string resolveConfigPath(std::string_view config, std::optional<std::string_view> file) const;
    /// The file that a write of a key goes to; the skin itself for an empty text.
    std::string resolveWriteFilePath(std::string_view text) const;

    struct External {
        enum class Kind { url, file };

        Kind kind = Kind::file;
        /// The URL as written, or the path without "." and "..".
        std::string text;

        friend bool operator==(const External&, const External&) = default;
    };
    /// What opening `text` opens; absent when it is empty.
    std::optional<External> resolveExternalTarget(std::string_view text) const;

private:
    std::string skinDirectory() const;

    const std::string& skinPath_;
    const Options& variables_;
};

} // namespace Ostrel
