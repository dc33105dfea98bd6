#include "tds/socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace practice::tds {

namespace {

[[noreturn]] void fail(const std::string& what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/// Waits until there is something to read.
bool waitReadable(int descriptor, Deadline deadline)
{
    pollfd entry{descriptor, POLLIN, 0};
    for (;;) {
        int timeout = -1;
        if (deadline) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                *deadline - std::chrono::steady_clock::now());
            timeout = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 3'600'000));
        }
        const int ready = poll(&entry, 1, timeout);
        if (ready > 0)
            return true;
        if (ready == 0 || errno != EINTR)
            return false;
    }
}

} // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    Descriptor moved(std::move(other));
    std::swap(number_, moved.number_);
    return *this;
}

Descriptor::~Descriptor()
{
    if (number_ >= 0)
        ::close(number_);
}

int Descriptor::release()
{
    return std::exchange(number_, -1);
}

Socket::Socket(Descriptor descriptor) : descriptor_(std::move(descriptor))
{
    const int on = 1;
    setsockopt(descriptor_.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

bool Socket::sendAll(const std::uint8_t* bytes, std::size_t count)
{
    while (count > 0) {
        const ssize_t sent = send(descriptor_.get(), bytes, count, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        bytes += sent;
        count -= static_cast<std::size_t>(sent);
    }
    return true;
}

bool Socket::receiveAll(std::uint8_t* bytes, std::size_t count, Deadline deadline)
{
    while (count > 0) {
        if (!waitReadable(descriptor_.get(), deadline))
            return false;
        const ssize_t received = recv(descriptor_.get(), bytes, count, 0);
        if (received < 0 && errno == EINTR)
            continue;
        if (received <= 0)
            return false;
        bytes += received;
        count -= static_cast<std::size_t>(received);
    }
    return true;
}

Socket::Peek Socket::peek(std::uint8_t& byte) const
{
    const ssize_t seen = recv(descriptor_.get(), &byte, 1, MSG_PEEK | MSG_DONTWAIT);
    if (seen == 1)
        return Peek::Byte;
    const bool waiting = seen < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
    return waiting ? Peek::Nothing : Peek::Closed;
}

void Socket::shutdown() const
{
    ::shutdown(descriptor_.get(), SHUT_RDWR);
}

Descriptor listenOnLoopback(std::uint16_t port)
{
    Descriptor listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!listener.valid())
        fail("socket");
    const int on = 1;
    setsockopt(listener.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool bound = bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (!bound || listen(listener.get(), 64) != 0)
        fail("cannot listen on 127.0.0.1:" + std::to_string(port));
    return listener;
}

std::uint16_t portOf(const Descriptor& listener)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (getsockname(listener.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0)
        fail("getsockname");
    return ntohs(address.sin_port);
}

} // namespace practice::tds
