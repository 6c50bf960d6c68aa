#pragma once

#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelCore/Files/FolderListing.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// What is done with all that a walk comes by. `parent` is the open folder that the name is in.
class FolderVisitor {
public:
    virtual ~FolderVisitor() = default;
    /// Anything but a folder: a link is itself, not what it leads to.
    virtual void visitFile(int parent, const char* name) = 0;
    /// A folder, after all that is in it. One that cannot be read is taken as empty.
    virtual void leaveFolder(int parent, const char* name) = 0;
};

/// Walks through the entries of one open folder, to any depth, and never leaves it: links are not followed, and what is
/// mounted within is passed over. A folder that is moved away during the walk ends it for its entry.
class FolderWalk {
public:
    /// `root` and `visitor` outlive the walk.
    FolderWalk(int root, FolderVisitor& visitor);

    /// An entry of the root, with all below it.
    void visit(const FolderEntry& entry);

private:
    /// What makes an open folder this one and no other.
    struct Identity {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::uint64_t mount = 0;

        friend bool operator==(const Identity&, const Identity&) = default;
    };
    struct Level {
        std::string name;
        Identity identity;
        /// False while the walk is deep below it: a process has few.
        FileDescriptor folder;
        /// Those in it that are still to be entered.
        std::vector<std::string> pendingFolders;
    };

    static std::optional<Identity> identityOf(int folder);
    int parentOf(std::size_t level) const { return level == 0 ? root_ : levels_[level - 1].folder.get(); }

    void enter(std::string name);
    bool leave();
    bool reopenParent(Level& parent, int child) const;

    int root_;
    std::optional<Identity> rootIdentity_;
    FolderVisitor& visitor_;
    FolderListing listing_;
    /// From the entry of the root down to the open folder.
    std::vector<Level> levels_;
};

} // namespace Ostrel
