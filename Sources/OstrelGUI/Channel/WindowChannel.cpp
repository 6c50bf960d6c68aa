#include "OstrelGUI/Channel/WindowChannel.h"

#include <QSocketNotifier>
#include <QTimer>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/uio.h>

namespace Ostrel {

namespace {

constexpr std::size_t ReadSize = 128 << 10;
/// Of one turn of the loop, so that a talkative peer does not hold up the rest of the program.
constexpr int ReadsATurn = 8;

bool wouldWait() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

} // namespace

WindowChannel::WindowChannel(FileDescriptor socket)
    : socket_(std::move(socket))
    , life_(std::make_unique<QObject>()) {
    fcntl(socket_.get(), F_SETFL, fcntl(socket_.get(), F_GETFL) | O_NONBLOCK);
    fcntl(socket_.get(), F_SETFD, FD_CLOEXEC);
    readable_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
    QObject::connect(readable_.get(), &QSocketNotifier::activated, readable_.get(), [this] { readSome(); });
    writable_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Write);
    writable_->setEnabled(false);
    QObject::connect(writable_.get(), &QSocketNotifier::activated, writable_.get(), [this] { writeQueued(); });
}

WindowChannel::~WindowChannel() {
    // One of the two may be what is calling us.
    for (auto* notifier : {&readable_, &writable_}) {
        (*notifier)->setEnabled(false);
        notifier->release()->deleteLater();
    }
}

void WindowChannel::send(const nlohmann::json& message, std::shared_ptr<const std::string> blob) {
    auto begin = MessageFrames::begin(message, blob ? blob->size() : 0);
    if (!isOpen() || begin.empty())
        return;
    auto& frame = queue_.emplace_back(Outgoing{std::move(begin), std::move(blob)});
    queuedBytes_ += frame.size();
    if (queuedBytes_ > LongestQueue)
        return end();
    if (queue_.size() == 1)
        writeQueued();
}

void WindowChannel::writeQueued() {
    const bool wasWaiting = writable_->isEnabled();
    while (!queue_.empty()) {
        auto& frame = queue_.front();
        const auto written = write(frame);
        if (written < 0 && !wouldWait())
            return end();
        if (written < 0)
            break;
        frame.sent += static_cast<std::size_t>(written);
        queuedBytes_ -= static_cast<std::size_t>(written);
        if (frame.sent == frame.size())
            queue_.pop_front();
    }
    writable_->setEnabled(!queue_.empty());
    if (wasWaiting && queue_.empty() && onDrained)
        onDrained();
}

long WindowChannel::write(const Outgoing& frame) const {
    const auto inBlob = frame.sent > frame.begin.size() ? frame.sent - frame.begin.size() : 0;
    const auto inBegin = frame.sent - inBlob;
    iovec parts[2]{};
    parts[0] = {const_cast<char*>(frame.begin.data()) + inBegin, frame.begin.size() - inBegin};
    if (frame.blob)
        parts[1] = {const_cast<char*>(frame.blob->data()) + inBlob, frame.blob->size() - inBlob};
    msghdr header{};
    header.msg_iov = parts;
    header.msg_iovlen = frame.blob ? 2 : 1;
    return sendmsg(socket_.get(), &header, MSG_NOSIGNAL);
}

void WindowChannel::readSome() {
    const auto handler = [this](const nlohmann::json& message, std::string blob) {
        // What an earlier message was answered with may have ended the channel.
        if (isOpen() && onMessage)
            onMessage(message, std::move(blob));
    };
    std::string bytes(ReadSize, '\0');
    for (int i = 0; i < ReadsATurn; ++i) {
        const auto count = recv(socket_.get(), bytes.data(), bytes.size(), 0);
        if (count < 0 && wouldWait())
            return;
        if (count <= 0)
            return end();
        const bool isGood = reader_.read({bytes.data(), static_cast<std::size_t>(count)}, handler);
        if (!isGood || !isOpen())
            return end();
        if (static_cast<std::size_t>(count) < bytes.size())
            return;
    }
}

void WindowChannel::end() {
    if (!isOpen())
        return;
    readable_->setEnabled(false);
    writable_->setEnabled(false);
    socket_.reset();
    queue_.clear();
    queuedBytes_ = 0;
    QTimer::singleShot(0, life_.get(), [this] {
        if (onEnd)
            std::exchange(onEnd, nullptr)();
    });
}

} // namespace Ostrel
