#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace Ostrel {

/// Turns SIGINT and SIGTERM into a call on the main loop, for as long as it lives. One at a time in a process.
class TerminationSignals {
public:
    explicit TerminationSignals(std::function<void()> onSignal);
    ~TerminationSignals();

private:
    std::function<void()> onSignal_;
    int pipe_[2] = {-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace Ostrel
