#pragma once

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelDialect/PackSkin.h"
#include "OstrelDialect/References.h"

#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

class FileProvider;

/// What references see while a skin is read: its variables, its folders and the few names of the environment that are
/// told. Sections, calls and events stay as written.
class PackVariables : public ReferenceScope {
public:
    /// Both outlive this.
    PackVariables(const Options& variables, const PackFolders& folders)
        : variables_(variables)
        , folders_(folders) { }

    std::optional<std::string> variable(std::string_view name) const override;
    std::optional<std::string> section(std::string_view, std::optional<std::string_view>) const override {
        return std::nullopt;
    }
    std::optional<std::string> call(
        std::string_view, std::string_view, const std::vector<std::string>&) const override {
        return std::nullopt;
    }
    std::optional<std::string> event(std::string_view) const override { return std::nullopt; }
    /// The user's home, name, temporary, configuration and data folders; nothing else of the environment.
    std::optional<std::string> environment(std::string_view name) const override;

private:
    const Options& variables_;
    const PackFolders& folders_;
};

/// Reads skin files by the full dialect's rules: of two sections of one name in one file the second is ignored, of two
/// keys in one section of one file the first counts, and between files the later line wins. Sections that are new in an
/// included file stand behind the section that includes it.
class PackReader {
public:
    static constexpr int MaxIncludeDepth = 100;
    static constexpr int MaxIncludes = 10000;
    static constexpr std::size_t MaxLines = 1000000;
    static constexpr std::size_t MaxBytes = 64U << 20;

    explicit PackReader(FileProvider& files)
        : files_(files) { }

    /// Absent when the skin's own file cannot be read.
    std::optional<PackSkin> read(const PackFolders& folders) const;

private:
    FileProvider& files_;
};

/// The skin at a path, read from disk with its folders found. Absent when its file cannot be read.
std::optional<PackSkin> readPackSkin(const std::string& skinFile,
    std::optional<std::string_view> openedFolder = std::nullopt,
    std::optional<std::string_view> rootOverride = std::nullopt);

/// The skin as plain data with all that can be resolved at load resolved: what `inspect` shows and hosts ask for.
SkinConfig skinConfigAtLoad(const PackSkin& skin);

} // namespace Ostrel
