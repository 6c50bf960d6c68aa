#include "Support/PlayerBus.h"

#include <cstdio>
#include <cstdlib>

namespace Ostrel {

PlayerBus::PlayerBus() {
    setenv("DBUS_SESSION_BUS_ADDRESS", bus_.address().c_str(), 1);
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
