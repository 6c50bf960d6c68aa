#pragma once

namespace Ostrel {

/// What Qt reads from the environment while the application object is made, set so that a program of panels starts
/// quickly and wakes for nothing. The user's own settings win. Removed again with the object, so that programs which
/// skins launch do not inherit it.
class StartEnvironment {
public:
    StartEnvironment();
    ~StartEnvironment();
    StartEnvironment(const StartEnvironment&) = delete;
    StartEnvironment& operator=(const StartEnvironment&) = delete;

private:
    /// Bit i for the variable number i.
    unsigned set_ = 0;
};

} // namespace Ostrel
