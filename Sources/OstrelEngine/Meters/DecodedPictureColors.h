#pragma once

#include "OstrelPlatform/PictureColors.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

namespace Ostrel {

/// Decodes pictures as the meters do and remembers the mean of each file for as long as the file stays the same.
class DecodedPictureColors final : public PictureColors {
public:
    std::optional<RGBColor> average(const std::string& path) override;

    /// For tests: files decoded so far.
    int decodedFiles() const { return decodedFiles_; }

private:
    /// What changes with the content of a file.
    struct Stamp {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::int64_t size = 0;
        std::int64_t modifiedNanoseconds = 0;
        std::int64_t changedNanoseconds = 0;

        friend bool operator==(const Stamp&, const Stamp&) = default;
    };
    struct Entry {
        Stamp stamp;
        std::optional<RGBColor> color;
    };

    static std::optional<Stamp> stampOf(const std::string& path);

    std::unordered_map<std::string, Entry> entries_;
    int decodedFiles_ = 0;
};

} // namespace Ostrel
