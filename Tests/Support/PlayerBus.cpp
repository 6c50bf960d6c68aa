#include "Support/PlayerBus.h"

#include <cstdio>
#include <cstdlib>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace Ostrel {

namespace {

/// The socket is a file before anyone listens to it.
bool isListening(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int handle = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected = connect(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(handle);
    return connected;
}

} // namespace

PlayerBus::PlayerBus() {
    const auto socketFile = folder_.path() + "/bus";
    const auto address = "unix:path=" + socketFile;
    setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
    daemon_.emplace(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--address=" + address});
    comesTrue([&] { return isListening(socketFile); });
}

PlayerBus::~PlayerBus() {
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

std::string PlayerBus::playerctl(const std::string& arguments) const {
    FILE* output = popen(("playerctl " + arguments + " 2>/dev/null").c_str(), "r");
    std::string text;
    for (int c = 0; output && (c = std::fgetc(output)) != EOF;)
        text += static_cast<char>(c);
    if (output)
        pclose(output);
    while (text.ends_with('\n'))
        text.pop_back();
    return text;
}

} // namespace Ostrel
