#pragma once

#include "OstrelCore/Files/FileDescriptor.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel {

/// Tells apart bytes that are whole from bytes that are not; no protection against anyone who means harm.
std::uint64_t checksum(std::string_view bytes);

/// Changes of a base, appended to files that only grow, so that each is safe against the end of this process at the
/// cost of one write, and nothing is ever rewritten. The files are numbered, "<name>.journal.1" and so on; each line is
///
///     <checksum, 16 hexadecimal digits> <record without line feeds>
///
/// A line that a kill left half written, and what follows it, does not count; every start continues in a new file.
///
/// To fold the changes into the base: `rotate`, which ends the file; `markFolded` with the checksum of the base to be;
/// write the base; `discard`. Between any two of them the process may end. Files up to a mark of the base as it is
/// are part of that base, and those that follow come on top of it.
class SessionJournal {
public:
    SessionJournal(std::string folder, std::string_view name);

    /// What was appended since the base of this checksum was written, in order.
    std::vector<std::string> read(std::uint64_t base);
    /// False when it could not be stored; then nothing of it was.
    bool append(std::string_view record);
    /// What this object has appended since the last rotation.
    std::size_t size() const { return size_; }
    /// Whether there is any file.
    bool isEmpty() const;

    /// Ends the file and gives its number.
    int rotate();
    /// These two may be called on any thread, for numbers that were given before.
    void markFolded(int upTo, std::uint64_t base) const;
    void discard(int upTo) const;
    /// Moves all files out of the way: their base cannot be read.
    void setAside();

private:
    using File = std::pair<int, std::string>;

    std::string pathOf(int number) const;
    std::vector<File> files() const;

    std::string folder_;
    std::string prefix_;
    int number_ = 1;
    FileDescriptor file_;
    std::size_t size_ = 0;
};

} // namespace Ostrel
