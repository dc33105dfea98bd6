#include "support/FaultProxy.h"

#include <algorithm>
#include <array>
#include <poll.h>
#include <random>
#include <stdexcept>
#include <sys/socket.h>
#include <vector>

namespace support {

namespace {

constexpr std::size_t mostDropped = 64;
constexpr std::size_t mostNoise = 512;

bool isOnce(Fault::Kind kind)
{
    return kind == Fault::Kind::Delay || kind == Fault::Kind::Flip || kind == Fault::Kind::Drop ||
           kind == Fault::Kind::Garbage;
}

/// Makes the socket's end a reset.
void forgetOrder(int socket)
{
    const linger atOnce{1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
}

std::vector<char> noise(std::mt19937& random)
{
    std::vector<char> bytes(1 + random() % mostNoise);
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

} // namespace

struct FaultProxy::Path
{
    int from;
    int to;
    Fault::Direction direction;
};

std::string Fault::text() const
{
    constexpr std::array names{"none", "close", "reset",   "stall",  "delay",
                               "flip", "drop",  "garbage", "trickle"};
    return std::string(names.at(static_cast<std::size_t>(kind))) +
           (direction == Direction::ToClient ? " to client" : " to server") + " at " +
           std::to_string(offset) + ", seed " + std::to_string(seed);
}

FaultProxy::FaultProxy(int serverPort)
    : m_serverPort(serverPort),
      m_listener([this](int client, const auto& stopping) { serve(client, stopping); })
{}

void FaultProxy::setFault(const Fault& fault)
{
    const std::lock_guard lock(m_mutex);
    m_fault = fault;
    m_passed = 0;
}

void FaultProxy::serve(int client, const std::atomic<bool>& stopping)
try {
    const Descriptor server(connectToLoopback(m_serverPort));
    const std::array paths{Path{client, server.get(), Fault::Direction::ToServer},
                           Path{server.get(), client, Fault::Direction::ToClient}};
    while (!stopping) {
        std::array<pollfd, 2> ready{{{client, POLLIN, 0}, {server.get(), POLLIN, 0}}};
        ::poll(ready.data(), ready.size(), 20);
        for (std::size_t index = 0; index < paths.size(); ++index)
            if (ready.at(index).revents != 0 && !pass(paths.at(index), stopping))
                return;
    }
} catch (const std::runtime_error&) {
    return; // no server: the client sees its connection closed
}

std::size_t FaultProxy::untouched(Fault::Direction direction, std::size_t size, Fault& fault)
{
    const std::lock_guard lock(m_mutex);
    if (m_fault.kind == Fault::Kind::None || m_fault.direction != direction)
        return size;
    const std::size_t before = std::min(size, m_fault.offset - std::min(m_fault.offset, m_passed));
    m_passed += before;
    if (before == size)
        return size;
    fault = m_fault;
    if (isOnce(m_fault.kind))
        m_fault = {};
    return before;
}

bool FaultProxy::pass(const Path& path, const std::atomic<bool>& stopping)
{
    std::array<char, 16'384> buffer{};
    const ssize_t size = ::recv(path.from, buffer.data(), buffer.size(), 0);
    if (size <= 0)
        return false;
    Fault fault;
    const auto bytes = std::span(buffer).first(static_cast<std::size_t>(size));
    const std::size_t before = untouched(path.direction, bytes.size(), fault);
    if (before > 0 && !sendAll(path.to, bytes.data(), before))
        return false;
    return before == bytes.size() || misbehave(path, fault, bytes.subspan(before), stopping);
}

bool FaultProxy::misbehave(const Path& path, const Fault& fault, std::span<char> bytes,
                           const std::atomic<bool>& stopping)
{
    std::mt19937 random(fault.seed);
    switch (fault.kind) {
    case Fault::Kind::None:
        break;
    case Fault::Kind::Close:
        return false;
    case Fault::Kind::Reset:
        forgetOrder(path.from);
        forgetOrder(path.to);
        return false;
    case Fault::Kind::Stall:
        return true;
    case Fault::Kind::Delay:
        std::this_thread::sleep_for(fault.pace);
        break;
    case Fault::Kind::Flip:
        bytes.front() = static_cast<char>(bytes.front() ^ (1 << random() % 8));
        break;
    case Fault::Kind::Drop:
        bytes = bytes.subspan(std::min(bytes.size(), 1 + random() % mostDropped));
        break;
    case Fault::Kind::Garbage: {
        const auto before = noise(random);
        if (!sendAll(path.to, before.data(), before.size()))
            return false;
        break;
    }
    case Fault::Kind::Trickle:
        return trickle(path, fault, bytes, stopping);
    }
    return sendAll(path.to, bytes.data(), bytes.size());
}

bool FaultProxy::trickle(const Path& path, const Fault& fault, std::span<char> bytes,
                         const std::atomic<bool>& stopping)
{
    for (const char& byte : bytes) {
        if (stopping || !sendAll(path.to, &byte, 1))
            return false;
        if (fault.pace.count() > 0)
            std::this_thread::sleep_for(fault.pace);
    }
    return true;
}

} // namespace support
