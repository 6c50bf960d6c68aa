#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace Ostrel {

/// A web server on the loopback address, one thread a connection. What is answered are a test's bytes, head included;
/// an empty answer leaves the connection open without a word, `Endless` sends for ever what stands before it.
class WebServer {
public:
    static constexpr const char* Endless = "<endless>";
    /// Gets the whole head of a request.
    using Answer = std::function<std::string(const std::string& request)>;

    explicit WebServer(Answer answer)
        : answer_(std::move(answer))
        , socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        listen(socket_, 64);
        socklen_t size = sizeof address;
        getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { run(); });
    }
    ~WebServer() {
        isStopping_ = true;
        thread_.join();
        for (auto& connection : connections_)
            connection.join();
        close(socket_);
    }
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    std::string url(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(port_) + path; }
    static std::string page(const std::string& body, const std::string& headers = {}) {
        return "HTTP/1.1 200 OK\r\nConnection: close\r\n" + headers + "\r\n" + body;
    }

    std::atomic<int> requests = 0;
    std::atomic<int> open = 0;
    std::atomic<int> mostOpen = 0;

private:
    bool waitForInput(int handle) const {
        while (!isStopping_) {
            pollfd file{handle, POLLIN, 0};
            if (poll(&file, 1, 20) > 0)
                return true;
        }
        return false;
    }
    void run() {
        while (waitForInput(socket_)) {
            const int handle = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
            connections_.emplace_back([this, handle] {
                serve(handle);
                --open;
                close(handle);
            });
        }
    }
    void serve(int handle) {
        const int now = ++open;
        if (now > mostOpen)
            mostOpen = now;
        std::string request;
        while (request.find("\r\n\r\n") == std::string::npos) {
            char buffer[4096];
            if (!waitForInput(handle))
                return;
            const auto size = recv(handle, buffer, sizeof buffer, 0);
            if (size <= 0)
                return;
            request.append(buffer, static_cast<std::size_t>(size));
        }
        ++requests;
        auto bytes = answer_(request);
        const auto endless = bytes.find(Endless);
        bytes.resize(std::min(endless, bytes.size()));
        if (bytes.empty())
            waitForInput(handle);
        do {
            if (send(handle, bytes.data(), bytes.size(), MSG_NOSIGNAL) <= 0)
                return;
            if (endless != std::string::npos)
                bytes.assign(65536, 'x');
        } while (endless != std::string::npos && !isStopping_);
    }

    Answer answer_;
    int socket_;
    int port_ = 0;
    std::atomic<bool> isStopping_ = false;
    std::thread thread_;
    std::vector<std::thread> connections_;
};

} // namespace Ostrel
