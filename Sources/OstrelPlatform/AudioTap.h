#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class SerialQueue;

/// A process, tap, device or delivery that the sound system knows; 0 is none.
using AudioObjectID = std::uint32_t;
/// 0 is success, anything else the sound system's own number for what went wrong.
using AudioStatus = std::int32_t;

struct AudioObjectResult {
    AudioStatus status = 0;
    AudioObjectID id = 0;

    bool succeeded() const { return status == 0 && id != 0; }
};

/// How delivered samples look. They arrive planar: one buffer a channel.
struct AudioStreamFormat {
    /// 'lpcm', the one format that is understood.
    static constexpr std::uint32_t LinearPCM = 0x6C70636D;

    double sampleRateHz = 0;
    std::uint32_t formatID = LinearPCM;
    bool isFloat = true;
    std::uint32_t bitsPerChannel = 32;
    std::uint32_t channels = 0;

    friend bool operator==(const AudioStreamFormat&, const AudioStreamFormat&) = default;
};

/// One buffer a channel, in the machine's byte order.
using AudioBufferList = std::span<const std::span<const std::byte>>;
/// Takes what was recorded and what was played in one cycle; either may be empty.
using AudioIOBlock = std::function<void(AudioBufferList input, AudioBufferList output)>;

/// Which sound a tap copies. The user keeps hearing all of it.
struct AudioTapDescription {
    enum class Scope { MixdownOf, GlobalExcluding };

    Scope scope = Scope::GlobalExcluding;
    /// The processes to listen to, or not to.
    std::vector<AudioObjectID> processes;
    std::string name;
    std::string uuid;
    bool isPrivate = true;

    friend bool operator==(const AudioTapDescription&, const AudioTapDescription&) = default;
};

/// The device through which a tap delivers.
struct AudioAggregateDescription {
    std::string name;
    std::string uid;
    bool isPrivate = true;
    bool isStacked = false;
    bool startsTapsItself = true;
    std::string tapUUID;
    bool compensatesDrift = true;
    /// The device that gives the clock, if there is one.
    std::optional<std::string> outputDeviceUID;

    friend bool operator==(const AudioAggregateDescription&, const AudioAggregateDescription&) = default;
};

enum class AudioScope { Input, Output, Global };

/// The operations that the capture needs of a sound system. All but those that say otherwise run on the system's
/// queue; they may take as long as the sound server takes to answer, within a bound.
class AudioTap {
public:
    virtual ~AudioTap() = default;

    /// False when this system will never have taps. Any thread.
    virtual bool isSupported() const = 0;
    /// Whether the user has let us listen. Any thread.
    virtual bool hasCaptureAccess() const = 0;
    /// Asks the user and tells what is known at once. Main thread.
    virtual bool requestCaptureAccess() = 0;
    /// So that the question is seen. Main thread.
    virtual void bringApplicationForward() = 0;

    /// The process id of the first running application of that bundle identifier.
    virtual std::optional<int> runningApplication(std::string_view bundleIdentifier) = 0;
    virtual int currentProcess() const = 0;
    /// 0 when the sound system does not know the process.
    virtual AudioObjectID processObject(int processID) = 0;

    virtual AudioObjectResult createProcessTap(const AudioTapDescription& description) = 0;
    virtual void destroyProcessTap(AudioObjectID tap) = 0;
    virtual AudioObjectResult createAggregateDevice(const AudioAggregateDescription& description) = 0;
    virtual void destroyAggregateDevice(AudioObjectID device) = 0;

    /// 0 when there is none.
    virtual AudioObjectID defaultSystemOutputDevice() = 0;
    virtual AudioObjectID defaultOutputDevice() = 0;
    virtual std::optional<std::string> deviceUID(AudioObjectID device) = 0;
    virtual std::optional<AudioStreamFormat> tapFormat(AudioObjectID tap) = 0;
    virtual std::optional<AudioStreamFormat> streamFormat(AudioObjectID device, AudioScope scope) = 0;
    /// Hertz; not positive when unknown.
    virtual double nominalSampleRate(AudioObjectID device) = 0;

    /// `block` runs on the queue for every cycle between `startDevice` and `stopDevice`. `onLost` runs on the queue
    /// once, as a piece of its own, when the sound system ends the delivery by itself.
    virtual AudioObjectResult createIOProc(AudioObjectID device, AudioIOBlock block, std::function<void()> onLost) = 0;
    virtual void destroyIOProc(AudioObjectID device, AudioObjectID ioProc) = 0;
    virtual AudioStatus startDevice(AudioObjectID device, AudioObjectID ioProc) = 0;
    virtual void stopDevice(AudioObjectID device, AudioObjectID ioProc) = 0;
};

/// A sound system and the queue on which it works. Its end stops the queue first.
class AudioSystem {
public:
    virtual ~AudioSystem() = default;
    virtual SerialQueue& queue() = 0;
    virtual AudioTap& tap() = 0;
};

} // namespace Ostrel
