#include "OstrelCore/Files/FolderWalk.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace Ostrel {

namespace {

constexpr std::size_t MostOpenFolders = 32;

} // namespace

FolderWalk::FolderWalk(int root, FolderVisitor& visitor)
    : root_(root)
    , rootIdentity_(identityOf(root))
    , visitor_(visitor) { }

std::optional<FolderWalk::Identity> FolderWalk::identityOf(int folder) {
    struct statx status = {};
    if (statx(folder, "", AT_EMPTY_PATH, STATX_INO | STATX_MNT_ID, &status) != 0)
        return std::nullopt;
    const auto device = std::uint64_t{status.stx_dev_major} << 32 | status.stx_dev_minor;
    return Identity{device, status.stx_ino, status.stx_mnt_id};
}

void FolderWalk::visit(const FolderEntry& entry) {
    if (!entry.isFolder)
        return visitor_.visitFile(root_, entry.name);
    if (!rootIdentity_)
        return;
    levels_.clear();
    enter(entry.name);
    while (!levels_.empty()) {
        auto& pending = levels_.back().pendingFolders;
        if (pending.empty()) {
            if (!leave())
                return;
            continue;
        }
        auto name = std::move(pending.back());
        pending.pop_back();
        enter(std::move(name));
    }
}

void FolderWalk::enter(std::string name) {
    const int parent = parentOf(levels_.size());
    auto folder = openFolder(parent, name.c_str());
    const auto identity = folder ? identityOf(folder.get()) : std::nullopt;
    const bool isMountedHere
        = identity && (identity->device != rootIdentity_->device || identity->mount != rootIdentity_->mount);
    if (isMountedHere)
        return;
    if (!identity || !listing_.read(folder.get()))
        return visitor_.leaveFolder(parent, name.c_str());
    if (levels_.size() >= MostOpenFolders)
        levels_.back().folder.reset();
    auto& level = levels_.emplace_back(Level{std::move(name), *identity, std::move(folder), {}});
    listing_.forEach([&](const FolderEntry& entry) {
        if (entry.isFolder)
            level.pendingFolders.emplace_back(entry.name);
        else
            visitor_.visitFile(level.folder.get(), entry.name);
    });
}

bool FolderWalk::leave() {
    const Level level = std::move(levels_.back());
    levels_.pop_back();
    if (!levels_.empty() && !levels_.back().folder && !reopenParent(levels_.back(), level.folder.get()))
        return false;
    visitor_.leaveFolder(parentOf(levels_.size()), level.name.c_str());
    return true;
}

bool FolderWalk::reopenParent(Level& parent, int child) const {
    parent.folder = openFolder(child, "..");
    return parent.folder && identityOf(parent.folder.get()) == parent.identity;
}

} // namespace Ostrel
