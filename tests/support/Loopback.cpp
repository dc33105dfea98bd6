#include "support/Loopback.h"

#include <arpa/inet.h>
#include <chrono>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace support {

namespace {

sockaddr_in loopback(int port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

Descriptor::~Descriptor()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

Listener::Listener(Serve serve)
    : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), m_serve(std::move(serve))
{
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (::bind(m_socket.get(), reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        ::listen(m_socket.get(), 8) != 0)
        throw std::runtime_error("no port to listen on");
    ::getsockname(m_socket.get(), reinterpret_cast<sockaddr*>(&address), &size);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { run(); });
}

Listener::~Listener()
{
    m_stopping = true;
    m_thread.join();
}

void Listener::run()
{
    while (!m_stopping) {
        pollfd ready{m_socket.get(), POLLIN, 0};
        if (::poll(&ready, 1, 20) != 1)
            continue;
        const Descriptor client(::accept4(m_socket.get(), nullptr, nullptr, SOCK_CLOEXEC));
        m_serve(client.get(), m_stopping);
    }
}

int connectToLoopback(int port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_in address = loopback(port);
    if (::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(socket);
        throw std::runtime_error("no server at the port");
    }
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return socket;
}

bool sendAll(int socket, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t sent = ::send(socket, data, size, MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        data += sent;
        size -= static_cast<std::size_t>(sent);
    }
    return true;
}

void shortPause()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
}

} // namespace support
