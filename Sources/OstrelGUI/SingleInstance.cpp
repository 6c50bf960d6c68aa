#include "OstrelGUI/SingleInstance.h"

#include "OstrelCore/Text/Numbers.h"

#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace Ostrel {

namespace {

constexpr std::string_view Answer = "ok";
constexpr char EndMark = '.';
/// What a process may be started with is no longer.
constexpr std::size_t LongestRequest = 4 << 20;
constexpr std::size_t MostVisitors = 16;
constexpr int RetryMilliseconds = 10;

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::string fileNameOf(std::string_view display) {
    // Screens of one display belong to one instance.
    const auto colon = display.rfind(':');
    const auto point = colon == std::string_view::npos ? colon : display.find('.', colon);
    std::string name(display.substr(0, point));
    for (char& character : name)
        if (!std::isalnum(static_cast<unsigned char>(character)))
            character = '_';
    return "ostrel-gui-" + name;
}

std::optional<sockaddr_un> addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return std::nullopt;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

FileDescriptor makeSocket() {
    return FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

bool isOfThisUser(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
}

bool isPrivateFolder(const std::string& path) {
    struct stat status { };
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid()
        && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

/// Each path with a zero byte behind it, and a mark that nothing was cut off.
std::string requestOf(const std::vector<std::string>& paths) {
    std::string request;
    for (const auto& path : paths)
        request += path + '\0';
    return request += EndMark;
}

bool isWhole(std::string_view request) {
    return request.ends_with(EndMark) && (request.size() == 1 || request[request.size() - 2] == '\0');
}

std::vector<std::string> pathsOf(std::string_view request) {
    std::vector<std::string> paths;
    for (auto end = request.find('\0'); end != std::string_view::npos; end = request.find('\0')) {
        paths.emplace_back(request.substr(0, end));
        request.remove_prefix(end + 1);
    }
    return paths;
}

/// Whether the socket is ready before the deadline.
bool waitFor(int socket, short events, double deadline) {
    pollfd entry{socket, events, 0};
    const double left = std::max(deadline - now(), 0.0);
    return poll(&entry, 1, static_cast<int>(left * 1000) + 1) > 0;
}

bool sendAll(int socket, std::string_view bytes, double deadline) {
    while (!bytes.empty()) {
        const auto sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent > 0)
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        else if ((errno != EAGAIN && errno != EINTR) || now() > deadline || !waitFor(socket, POLLOUT, deadline))
            return false;
    }
    return true;
}

std::string receiveAll(int socket, double deadline) {
    std::string bytes;
    while (now() <= deadline && waitFor(socket, POLLIN, deadline)) {
        char part[64];
        const auto count = recv(socket, part, sizeof part, 0);
        if (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR) || bytes.size() > sizeof part)
            break;
        bytes.append(part, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return bytes;
}

} // namespace

/// A later start that is telling its paths.
class SingleInstance::Visitor {
public:
    Visitor(FileDescriptor socket, SingleInstance& owner)
        : socket_(std::move(socket))
        , owner_(owner)
        , notifier_(new QSocketNotifier(socket_.get(), QSocketNotifier::Read)) {
        QObject::connect(notifier_, &QSocketNotifier::activated, notifier_, [this] { readSome(); });
        // One that never ends its request is not kept.
        QTimer::singleShot(static_cast<int>(PatienceSeconds * 1000), &life_, [this] { owner_.dismiss(*this); });
    }
    ~Visitor() {
        notifier_->setEnabled(false);
        notifier_->deleteLater();
    }
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;

private:
    void readSome() {
        char part[16 << 10];
        const auto count = recv(socket_.get(), part, sizeof part, 0);
        if (count < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        request_.append(part, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count < 0 || request_.size() > LongestRequest || (count == 0 && !isWhole(request_)))
            return owner_.dismiss(*this);
        if (count > 0)
            return;
        send(socket_.get(), Answer.data(), Answer.size(), MSG_NOSIGNAL);
        const auto onStart = owner_.onStart_;
        const auto paths = pathsOf(request_);
        owner_.dismiss(*this);
        onStart(paths);
    }

    FileDescriptor socket_;
    SingleInstance& owner_;
    /// What is to happen later ends with it.
    QObject life_;
    /// It may be what is calling us, so it goes later.
    QSocketNotifier* notifier_;
    std::string request_;
};

SingleInstance::SingleInstance(std::string folder, std::string_view display)
    : lockPath_(std::move(folder) + "/" + fileNameOf(display) + ".lock")
    , socketPath_(lockPath_.substr(0, lockPath_.size() - 5) + ".socket") { }

SingleInstance::~SingleInstance() {
    if (socket_)
        unlink(socketPath_.c_str());
}

SingleInstance::Role SingleInstance::start(const std::vector<std::string>& paths) {
    const double deadline = now() + PatienceSeconds;
    do {
        if (takeLock()) {
            openSocket();
            return Role::First;
        }
        // The other may hold the lock and not listen yet, or be about to end.
        if (handOver(requestOf(paths), deadline))
            return Role::HandedOver;
        usleep(RetryMilliseconds * 1000);
    } while (now() < deadline);
    return Role::Unanswered;
}

bool SingleInstance::takeLock() {
    FileDescriptor lock(open(lockPath_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR));
    if (lock && flock(lock.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return false;
    // Without a lock there is nothing to find others by: better two instances than none.
    lock_ = std::move(lock);
    return true;
}

void SingleInstance::openSocket() {
    const auto address = addressOf(socketPath_);
    auto socket = makeSocket();
    if (!lock_ || !address || !socket)
        return;
    // Left behind by a process that was killed; nobody else holds the lock.
    unlink(socketPath_.c_str());
    if (bind(socket.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0)
        return;
    if (chmod(socketPath_.c_str(), S_IRUSR | S_IWUSR) == 0 && ::listen(socket.get(), MostVisitors) == 0)
        socket_ = std::move(socket);
}

bool SingleInstance::handOver(const std::string& request, double deadline) const {
    const auto address = addressOf(socketPath_);
    const auto socket = makeSocket();
    if (!address || !socket
        || connect(socket.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0)
        return false;
    if (!isOfThisUser(socket.get()) || !sendAll(socket.get(), request, deadline))
        return false;
    shutdown(socket.get(), SHUT_WR);
    return receiveAll(socket.get(), deadline) == Answer;
}

void SingleInstance::listen(std::function<void(const std::vector<std::string>&)> onStart) {
    onStart_ = std::move(onStart);
    if (!socket_)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(socket_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { acceptVisitors(); });
}

void SingleInstance::acceptVisitors() {
    FileDescriptor visitor(accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (visitor && isOfThisUser(visitor.get()) && visitors_.size() < MostVisitors)
        visitors_.push_back(std::make_unique<Visitor>(std::move(visitor), *this));
}

void SingleInstance::dismiss(const Visitor& visitor) {
    std::erase_if(visitors_, [&](const auto& present) { return present.get() == &visitor; });
}

std::optional<std::string> SingleInstance::privateFolder(
    const std::optional<std::string>& runtimeFolder, const std::string& temporaryFolder) {
    if (runtimeFolder && runtimeFolder->starts_with('/') && isPrivateFolder(*runtimeFolder))
        return runtimeFolder;
    auto folder = temporaryFolder + "/ostrel-" + formatInteger(geteuid());
    // Somebody else may have made it first: then it is not ours.
    mkdir(folder.c_str(), S_IRWXU);
    return isPrivateFolder(folder) ? std::optional(std::move(folder)) : std::nullopt;
}

std::string SingleInstance::displayName() {
    for (const auto* name : {"DISPLAY", "WAYLAND_DISPLAY"})
        if (const char* value = std::getenv(name); value && *value)
            return value;
    return {};
}

} // namespace Ostrel
