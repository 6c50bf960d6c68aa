#pragma once

#include "OstrelPlatform/RecycleManagerBackend.h"

#include <map>
#include <string>

namespace Ostrel {

/// The user's real trash, of which nothing is ever removed: tracing a skin must not delete the user's files. An
/// emptying counts as done even so, and what it would have removed no longer counts for the same drives.
class SparedTrash final : public RecycleManagerBackend {
public:
    explicit SparedTrash(RecycleManagerBackend& trash)
        : trash_(trash) { }

    RecycleBinSnapshot snapshot(const std::string& drives) override;
    std::int64_t itemCount(const std::string& drives) override;
    void openBin(const std::string& drives) override { trash_.openBin(drives); }
    void emptyBin(const std::string& drives) override { emptied_[drives] = trash_.snapshot(drives); }

private:
    RecycleManagerBackend& trash_;
    std::map<std::string, RecycleBinSnapshot> emptied_;
};

} // namespace Ostrel
