#pragma once

#include "Support/PrivateBus.h"
#include "Support/TemporaryFolder.h"

#include <chrono>
#include <string>
#include <thread>

namespace Ostrel {

/// A session bus of the test's own, which is this process's and its children's while it lives.
class PlayerBus {
public:
    PlayerBus();
    ~PlayerBus();

    /// What `playerctl` prints, without its line end.
    std::string playerctl(const std::string& arguments) const;
    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
    PrivateBus bus_;
};

/// Waits for what has to become true; false when it does not within a bearable time.
template <typename Condition> bool comesTrue(const Condition& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(15);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

} // namespace Ostrel
