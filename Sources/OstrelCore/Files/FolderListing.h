#pragma once

#include <string>

namespace Ostrel {

/// A name in a folder, and whether it is a folder itself; a link is none, whatever it leads to.
struct FolderEntry {
    const char* name = nullptr;
    bool isFolder = false;
};

/// The entries of one folder, all read before the first is looked at, so that they may be removed meanwhile. One object
/// can read many folders, one after the other, and keeps its memory.
class FolderListing {
public:
    /// Reads the open folder from its beginning; false, and no entries, when it cannot be read.
    bool read(int folder);

    /// Calls `visit(FolderEntry)` for each entry but "." and "..". The names live until the next read.
    template <typename Visit> void forEach(Visit visit) const {
        for (const char* entry = entries_.data(); entry < entries_.data() + entries_.size();) {
            const FolderEntry current{entry + 1, *entry == Folder};
            entry += 2 + std::char_traits<char>::length(current.name);
            visit(current);
        }
    }

private:
    static constexpr char Folder = 'd';
    static constexpr char Other = '-';

    void add(int folder, const char* name, unsigned char type);

    /// For each entry its kind, its name and a zero.
    std::string entries_;
    std::string buffer_;
};

} // namespace Ostrel
