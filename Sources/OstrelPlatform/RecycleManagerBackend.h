#pragma once

#include <cstdint>
#include <string>

namespace Ostrel {

struct RecycleBinSnapshot {
    /// What lies directly in the trash; what is in a folder there counts with its size alone.
    std::int64_t itemCount = 0;
    /// Bytes.
    std::int64_t totalSize = 0;

    friend bool operator==(const RecycleBinSnapshot&, const RecycleBinSnapshot&) = default;
};

/// The trash that `drives` stands for: "ALL", or paths between ",", "|" and ";". What cannot be read counts as empty
/// and what cannot be removed stays; nothing is reported. Main thread, which waits for the walk through the trash.
class RecycleManagerBackend {
public:
    virtual ~RecycleManagerBackend() = default;
    virtual RecycleBinSnapshot snapshot(const std::string& drives) = 0;
    /// Shows the trash to the user.
    virtual void openBin(const std::string& drives) = 0;
    /// Removes what is in it for good, unasked.
    virtual void emptyBin(const std::string& drives) = 0;
    /// The `itemCount` of a snapshot, for those who do not need the sizes: they cost the most.
    virtual std::int64_t itemCount(const std::string& drives) { return snapshot(drives).itemCount; }
};

} // namespace Ostrel
