#pragma once

#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace Ostrel {

/// Programs that are started and left to themselves. Each is in a session of its own, so that what ends us from a
/// terminal does not end it; it reads nothing, its output is dropped and its errors go where ours go; it has no other
/// open file of ours, the default signals, our environment and our working folder. What has ended is reaped by the
/// event loop, which wakes for that alone. Main thread.
class DetachedPrograms {
public:
    DetachedPrograms();
    ~DetachedPrograms();
    DetachedPrograms(const DetachedPrograms&) = delete;
    DetachedPrograms& operator=(const DetachedPrograms&) = delete;

    /// False when the system cannot execute the file: a folder, not executable, or a script that does not name its
    /// interpreter.
    bool launch(const std::string& program, const std::vector<std::string>& arguments);

private:
    class Watch;

    void reapInTime(pid_t process);

    std::vector<std::unique_ptr<Watch>> watches_;
};

} // namespace Ostrel
