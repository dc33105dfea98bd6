// Qt's VNC platform listens on every address of the machine. Preloaded into the console, this narrows
// each wildcard bind to the loopback address, so that the window is never offered to the network.
#include <arpa/inet.h>
#include <cstring>
#include <dlfcn.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace {

using Bind = int (*)(int, const sockaddr*, socklen_t);

int bindIpv4(Bind real, int socket, const sockaddr* address, socklen_t length)
{
    sockaddr_in narrowed{};
    std::memcpy(&narrowed, address, sizeof narrowed);
    if (narrowed.sin_addr.s_addr != htonl(INADDR_ANY))
        return real(socket, address, length);
    narrowed.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return real(socket, reinterpret_cast<const sockaddr*>(&narrowed), sizeof narrowed);
}

int bindIpv6(Bind real, int socket, const sockaddr* address, socklen_t length)
{
    sockaddr_in6 narrowed{};
    std::memcpy(&narrowed, address, sizeof narrowed);
    if (!IN6_IS_ADDR_UNSPECIFIED(&narrowed.sin6_addr))
        return real(socket, address, length);
    // Qt's wildcard socket takes both families; the mapped form keeps IPv4 clients working.
    inet_pton(AF_INET6, "::ffff:127.0.0.1", &narrowed.sin6_addr);
    return real(socket, reinterpret_cast<const sockaddr*>(&narrowed), sizeof narrowed);
}

} // namespace

extern "C" int bind(int socket, const sockaddr* address, socklen_t length)
{
    static const auto real = reinterpret_cast<Bind>(dlsym(RTLD_NEXT, "bind"));
    if (address && address->sa_family == AF_INET && length >= sizeof(sockaddr_in))
        return bindIpv4(real, socket, address, length);
    if (address && address->sa_family == AF_INET6 && length >= sizeof(sockaddr_in6))
        return bindIpv6(real, socket, address, length);
    return real(socket, address, length);
}
