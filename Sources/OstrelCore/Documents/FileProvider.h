#pragma once

#include "OstrelCore/Files/DirectoryListings.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace Ostrel {

/// The only way in which the document layer reads a file.
class FileProvider {
public:
    virtual ~FileProvider() = default;
    /// The text as UTF-8; absent when the file cannot be read.
    virtual std::optional<std::string> contentsOfFile(const std::string& path) = 0;
    /// True for folders too.
    virtual bool fileExists(const std::string& path) = 0;
};

/// Files on disk, found without regard to case. Folders, devices and files beyond `MaxFileSize` cannot be read. Keeps
/// listings of folders: one provider serves one load.
class DiskFileProvider final : public FileProvider {
public:
    /// Bytes. Far above any file that people write by hand; what a text of this size becomes still fits in memory.
    static constexpr std::size_t MaxFileSize = 4U << 20;

    std::optional<std::string> contentsOfFile(const std::string& path) override;
    bool fileExists(const std::string& path) override;

private:
    DirectoryListings listings_;
};

/// Files that exist only as texts; paths compare exactly.
class InMemoryFileProvider final : public FileProvider {
public:
    void addFile(const std::string& path, std::string contents) { files_[path] = std::move(contents); }

    std::optional<std::string> contentsOfFile(const std::string& path) override;
    bool fileExists(const std::string& path) override { return files_.contains(path); }

private:
    std::map<std::string, std::string> files_;
};

} // namespace Ostrel
