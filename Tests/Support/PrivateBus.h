#pragma once

#include "Support/ChildProcess.h"
#include "Support/ListeningSocket.h"
#include "Support/TemporaryFolder.h"

#include <chrono>
#include <string>
#include <thread>

namespace Ostrel {

/// A session bus of the test's own.
class PrivateBus {
public:
    /// Whether this machine can have one.
    static bool isPossible() { return hasProgram("dbus-daemon"); }

    PrivateBus()
        : process_({"dbus-daemon", "--session", "--nofork", "--address=" + address()}) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!isListening(socket()) && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }

    std::string address() const { return "unix:path=" + socket(); }

private:
    std::string socket() const { return folder_.path() + "/bus"; }

    TemporaryFolder folder_;
    ChildProcess process_;
};

} // namespace Ostrel
