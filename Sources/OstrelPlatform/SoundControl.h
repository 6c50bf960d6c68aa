#pragma once

#include <functional>
#include <string>

namespace Ostrel {

/// The output that the machine plays on. What is known is followed, never polled; changes are asked for and show when
/// the sound server has made them. Main thread.
class SoundControl {
public:
    struct State {
        /// False without a server or an output.
        bool isKnown = false;
        std::string description;
        /// 0 to 100, of normal volume.
        double volume = 0;
        bool isMuted = false;
    };

    virtual ~SoundControl() = default;
    /// The first call begins to listen.
    virtual const State& state() = 0;
    /// 0 to 100; ends a mute.
    virtual void setVolume(double volume) = 0;
    virtual void toggleMute() = 0;
    /// Another output, `steps` further in the server's order, wrapping; running sound moves there.
    virtual void chooseNext(int steps) = 0;
    /// By number from 1 on.
    virtual void choose(int number) = 0;
};

} // namespace Ostrel
