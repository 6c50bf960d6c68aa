#include "OstrelPlatform/Linux/Time/LinuxClock.h"

#include <ctime>

namespace Ostrel {

namespace {

double secondsOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

} // namespace

double LinuxClock::uptimeSeconds() const {
    return secondsOf(CLOCK_MONOTONIC);
}

double LinuxClock::wallSeconds() const {
    return secondsOf(CLOCK_REALTIME);
}

} // namespace Ostrel
