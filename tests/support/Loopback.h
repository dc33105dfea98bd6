// Sockets of 127.0.0.1 for tests that play a server or stand before one.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>

namespace support {

/// Owns a descriptor.
class Descriptor
{
public:
    explicit Descriptor(int descriptor) : m_descriptor(descriptor) {}
    ~Descriptor();
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

/// Listens on a free port and gives each client to a function, one after the other.
class Listener
{
public:
    using Serve = std::function<void(int client, const std::atomic<bool>& stopping)>;

    explicit Listener(Serve serve);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;
    [[nodiscard]] int port() const { return m_port; }

private:
    void run();

    Descriptor m_socket;
    Serve m_serve;
    int m_port = 0;
    std::atomic<bool> m_stopping = false;
    std::thread m_thread;
};

/// A socket connected with the port; throws std::runtime_error when nobody listens there.
int connectToLoopback(int port);
bool sendAll(int socket, const char* data, std::size_t size);
void shortPause();

} // namespace support
