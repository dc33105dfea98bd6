// Sockets on the loopback interface.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace practice::tds {

/// Owns a descriptor.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    [[nodiscard]] int get() const { return number_; }
    [[nodiscard]] bool valid() const { return number_ >= 0; }
    int release();

private:
    int number_ = -1;
};

using Deadline = std::optional<std::chrono::steady_clock::time_point>;

/// A connected stream. Sending and receiving may happen in different threads.
class Socket
{
public:
    explicit Socket(Descriptor descriptor);

    [[nodiscard]] int descriptor() const { return descriptor_.get(); }

    /// False when the peer is gone.
    [[nodiscard]] bool sendAll(const std::uint8_t* bytes, std::size_t count);

    /// Exactly `count` bytes; false at the end of the stream, on a fault, or past the deadline.
    [[nodiscard]] bool receiveAll(std::uint8_t* bytes, std::size_t count, Deadline deadline);

    enum class Peek : std::uint8_t
    {
        Nothing,
        Byte,
        Closed
    };
    /// The next byte without taking it, without waiting.
    [[nodiscard]] Peek peek(std::uint8_t& byte) const;

    /// Ends both directions, so that whoever waits on it returns.
    void shutdown() const;
    void close() { descriptor_ = {}; }

private:
    Descriptor descriptor_;
};

/// Listens on 127.0.0.1; port 0 picks a free one.
/// @throws std::system_error
[[nodiscard]] Descriptor listenOnLoopback(std::uint16_t port);
[[nodiscard]] std::uint16_t portOf(const Descriptor& listener);

} // namespace practice::tds
