#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <chrono>

namespace Ostrel {

/// Runs the event loop until the condition holds, and gives up late; whether it came to hold.
template <typename Condition> bool runLoopUntil(const Condition& condition) {
    const QDeadlineTimer deadline(std::chrono::seconds(20));
    while (!condition() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    return condition();
}

} // namespace Ostrel
