#include "OstrelPlatform/Linux/Web/LazyRemoteReader.h"
#include "OstrelPlatform/Linux/Web/QtRemoteReader.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <map>
#include <thread>

namespace Ostrel {
namespace {

/// Answers each request with what is written for its path; a path without an answer never gets one.
class WebServer {
public:
    explicit WebServer(std::map<std::string, std::string> answers)
        : answers_(std::move(answers)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        socklen_t length = sizeof address;
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length);
        listen(listener_, 16);
        port_ = ntohs(address.sin_port);
        pipe(stop_);
        thread_ = std::thread([this] { serve(); });
    }
    ~WebServer() {
        close(stop_[1]);
        thread_.join();
        for (const int open : {listener_, stop_[0]})
            close(open);
    }

    std::string url(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(port_) + path; }

private:
    void serve() {
        std::vector<int> held;
        for (;;) {
            pollfd events[] = {{stop_[0], POLLIN, 0}, {listener_, POLLIN, 0}};
            if (poll(events, 2, -1) < 0 || events[0].revents)
                break;
            const int client = accept(listener_, nullptr, nullptr);
            if (!answer(client))
                held.push_back(client);
        }
        for (const int client : held)
            close(client);
    }

    bool answer(int client) {
        std::string request;
        char part[4096];
        while (request.find("\r\n\r\n") == std::string::npos) {
            const auto got = recv(client, part, sizeof part, 0);
            if (got <= 0)
                break;
            request.append(part, static_cast<std::size_t>(got));
        }
        // A client may open a connection and have no use for it.
        const auto path = request.empty() ? request : request.substr(4, request.find(' ', 4) - 4);
        const auto found = answers_.find(path);
        if (found == answers_.end() && !path.empty())
            return false;
        if (found == answers_.end()) {
            close(client);
            return true;
        }
        for (std::string_view rest = found->second; !rest.empty();) {
            const auto sent = send(client, rest.data(), rest.size(), MSG_NOSIGNAL);
            if (sent <= 0)
                break;
            rest.remove_prefix(static_cast<std::size_t>(sent));
        }
        close(client);
        return true;
    }

    std::map<std::string, std::string> answers_;
    int listener_ = socket(AF_INET, SOCK_STREAM, 0);
    int stop_[2] = {-1, -1};
    int port_ = 0;
    std::thread thread_;
};

std::string page(const std::string& body) {
    return "HTTP/1.0 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string redirect(const std::string& target) {
    return "HTTP/1.0 302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\n\r\n";
}

TEST(RemoteReader, readsWithinItsLimitsAndNothingBeyond) {
    const std::string body("some\0bytes", 10);
    const WebServer server({
        {"/plain", page(body)},
        {"/empty", page("")},
        {"/full", page(std::string(1000, 'x'))},
        {"/large", page(std::string(1001, 'x'))},
        {"/unbounded", "HTTP/1.0 200 OK\r\n\r\n" + std::string(400'000, 'x')},
        {"/missing", "HTTP/1.0 404 Not Found\r\nContent-Length: 4\r\n\r\ngone"},
        {"/broken", "nonsense\r\n\r\n"},
        {"/once", redirect("/twice")},
        {"/twice", redirect("/plain")},
        {"/thrice", redirect("/once")},
        {"/forever", redirect("/forever")},
        {"/file", redirect("file:///etc/hostname")},
    });
    QtRemoteReader reader({.milliseconds = 10'000, .bytes = 1000, .redirects = 2});
    struct Case {
        const char* path;
        std::optional<std::string> expected;
    };
    for (const Case& c : {Case{"/plain", body}, Case{"/empty", ""}, Case{"/full", std::string(1000, 'x')},
             Case{"/large", {}}, Case{"/unbounded", {}}, Case{"/missing", {}}, Case{"/broken", {}}, Case{"/once", body},
             Case{"/thrice", {}}, Case{"/forever", {}}, Case{"/file", {}}}) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(reader.read(server.url(c.path)), c.expected);
    }
    for (const char* url : {"", "file:///etc/hostname", "ftp://127.0.0.1/x", "http://", "data:,x", "no url at all"})
        EXPECT_EQ(reader.read(url), std::nullopt) << url;
}

TEST(RemoteReader, givesUpOnAServerThatIsSilent) {
    const WebServer server({});
    QtRemoteReader reader({.milliseconds = 50});
    EXPECT_EQ(reader.read(server.url("/never")), std::nullopt);
}

TEST(RemoteReader, isLoadedAtItsFirstReadAndMissedQuietly) {
    const WebServer server({{"/plain", page("text")}});
    LazyRemoteReader lazy(std::string(std::getenv("OSTREL_BUILD")) + "/Sources/OstrelPlatform/Linux/ostrel-remote.so");
    EXPECT_EQ(lazy.read(server.url("/plain")), "text");
    LazyRemoteReader missing("/nonexistent/module.so");
    EXPECT_EQ(missing.read(server.url("/plain")), std::nullopt);
}

} // namespace
} // namespace Ostrel
