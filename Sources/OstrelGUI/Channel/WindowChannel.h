#pragma once

#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelGUI/Channel/MessageFrames.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>

class QObject;
class QSocketNotifier;

namespace Ostrel {

/// One end of the connection between the resident process and that of the main window. Never waits: what the other end
/// does not take yet is queued. An end that is gone, that breaks the rules or that takes nothing while more and more is
/// to be sent ends the channel, nothing else. Main thread, which needs an event loop of Qt's.
class WindowChannel {
public:
    /// A channel whose other end leaves more than this unread has ended.
    static constexpr std::size_t LongestQueue = std::size_t{256} << 20;

    /// A connected stream socket.
    explicit WindowChannel(FileDescriptor socket);
    ~WindowChannel();
    WindowChannel(const WindowChannel&) = delete;
    WindowChannel& operator=(const WindowChannel&) = delete;

    /// The raw bytes are shared until they are sent; null for none. A channel that has ended sends nothing.
    void send(const nlohmann::json& message, std::shared_ptr<const std::string> blob = nullptr);
    /// What has been sent and not been taken by the system yet.
    std::size_t queuedBytes() const { return queuedBytes_; }
    bool isOpen() const { return static_cast<bool>(socket_); }

    /// Must not end the channel's life.
    FrameReader::Handler onMessage;
    /// When all that was queued has been taken.
    std::function<void()> onDrained;
    /// Once, from the event loop, never from within `send`. May end the channel's life.
    std::function<void()> onEnd;

private:
    struct Outgoing {
        std::string begin;
        std::shared_ptr<const std::string> blob;
        std::size_t sent = 0;

        std::size_t size() const { return begin.size() + (blob ? blob->size() : 0); }
    };

    void readSome();
    void writeQueued();
    /// Below 0 with `errno` when nothing was taken.
    long write(const Outgoing& frame) const;
    void end();

    FileDescriptor socket_;
    FrameReader reader_;
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_;
    std::deque<Outgoing> queue_;
    std::size_t queuedBytes_ = 0;
    /// What is to happen later ends with it.
    std::unique_ptr<QObject> life_;
};

} // namespace Ostrel
