#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Ostrel {

/// Finds files as a file system that ignores case would. Each folder is listed at most once in the object's life, so
/// one object serves one load: what changes on disk meanwhile may go unseen.
class DirectoryListings {
public:
    /// The path itself when it exists, else the first match ignoring case, component by component; absent when there is
    /// neither. Of several matches in one folder the first in byte order is taken.
    std::optional<std::string> existingPath(std::string_view path);
    /// The same for one name within a folder; an empty folder is the working folder.
    std::optional<std::string> child(const std::string& directory, std::string_view name);

private:
    const std::vector<std::string>& names(const std::string& directory);

    std::unordered_map<std::string, std::vector<std::string>> namesByDirectory_;
};

} // namespace Ostrel
