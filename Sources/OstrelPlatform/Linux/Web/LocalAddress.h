#pragma once

#include <string_view>

struct sockaddr;

namespace Ostrel {

/// Addresses of this machine and of the nets around it: loopback, private, link-local, shared, multicast and
/// unspecified ones (RFC 6890), also as they stand in IPv6. What is of no known family counts as local.
bool isLocalAddress(const sockaddr& address);
/// The same for a host as a URL has it, with or without port, when it is an address or names this machine.
bool isLocalName(std::string_view host);

} // namespace Ostrel
