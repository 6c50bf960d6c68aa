#include "OstrelGUI/TerminationSignals.h"

#include <QSocketNotifier>

#include <atomic>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace Ostrel {

namespace {

constexpr int Handled[] = {SIGINT, SIGTERM};

/// All that a signal handler may touch: where to write its byte.
std::atomic<int> wakeDescriptor = -1;

void wakeMainLoop(int) {
    const int before = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(wakeDescriptor, &byte, 1);
    errno = before;
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> onSignal)
    : onSignal_(std::move(onSignal)) {
    if (pipe2(pipe_, O_CLOEXEC | O_NONBLOCK))
        return;
    notifier_ = std::make_unique<QSocketNotifier>(pipe_[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        char bytes[16];
        while (read(pipe_[0], bytes, sizeof bytes) > 0) { }
        onSignal_();
    });
    wakeDescriptor = pipe_[1];
    for (const int signal : Handled)
        std::signal(signal, wakeMainLoop);
}

TerminationSignals::~TerminationSignals() {
    for (const int signal : Handled)
        std::signal(signal, SIG_DFL);
    notifier_.reset();
    for (const int end : pipe_)
        if (end >= 0)
            close(end);
}

} // namespace Ostrel
