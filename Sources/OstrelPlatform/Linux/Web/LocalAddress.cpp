#include "OstrelPlatform/Linux/Web/LocalAddress.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace Ostrel {

namespace {

struct Net {
    std::uint32_t address;
    int bits;
};

constexpr std::array<Net, 11> LocalNets
    = {{{0x00000000, 8}, {0x0A000000, 8}, {0x64400000, 10}, {0x7F000000, 8}, {0xA9FE0000, 16}, {0xAC100000, 12},
        {0xC0000000, 24}, {0xC0A80000, 16}, {0xC6120000, 15}, {0xE0000000, 4}, {0xF0000000, 4}}};

bool isLocal(std::uint32_t address) {
    return std::ranges::any_of(
        LocalNets, [&](const Net& net) { return (address ^ net.address) >> (32 - net.bits) == 0; });
}

bool isLocal(const in6_addr& address) {
    const auto* bytes = address.s6_addr;
    const auto last = [&](int from) {
        return std::uint32_t(bytes[from]) << 24 | std::uint32_t(bytes[from + 1]) << 16
            | std::uint32_t(bytes[from + 2]) << 8 | bytes[from + 3];
    };
    if (IN6_IS_ADDR_V4MAPPED(&address) || IN6_IS_ADDR_V4COMPAT(&address) || IN6_IS_ADDR_UNSPECIFIED(&address)
        || IN6_IS_ADDR_LOOPBACK(&address))
        return IN6_IS_ADDR_V4MAPPED(&address) ? isLocal(last(12)) : true;
    // The translation prefix 64:ff9b::/96 holds an IPv4 address.
    constexpr std::array<std::uint8_t, 12> Translated = {0, 0x64, 0xff, 0x9b};
    if (std::equal(Translated.begin(), Translated.end(), bytes))
        return isLocal(last(12));
    // Unique local, link-local and site-local, multicast.
    return (bytes[0] & 0xFE) == 0xFC || (bytes[0] == 0xFE && (bytes[1] & 0x80) != 0) || bytes[0] == 0xFF;
}

} // namespace

bool isLocalAddress(const sockaddr& address) {
    if (address.sa_family == AF_INET) {
        sockaddr_in four{};
        std::memcpy(&four, &address, sizeof four);
        return isLocal(ntohl(four.sin_addr.s_addr));
    }
    if (address.sa_family == AF_INET6) {
        sockaddr_in6 six{};
        std::memcpy(&six, &address, sizeof six);
        return isLocal(six.sin6_addr);
    }
    return true;
}

bool isLocalName(std::string_view host) {
    if (host.starts_with('[')) {
        in6_addr six{};
        const std::string inside(host.substr(1, host.find(']') - 1));
        return inet_pton(AF_INET6, inside.c_str(), &six) != 1 || isLocal(six);
    }
    std::string name(host.substr(0, host.find(':')));
    std::ranges::transform(
        name, name.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    while (name.ends_with('.'))
        name.pop_back();
    // As lenient as the libraries that look names up: "127.1" and "0x7f000001" are addresses.
    in_addr four{};
    if (inet_aton(name.c_str(), &four) != 0)
        return isLocal(ntohl(four.s_addr));
    return name == "localhost" || name.ends_with(".localhost") || name.ends_with(".local") || name.empty();
}

} // namespace Ostrel
