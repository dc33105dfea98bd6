// A stretch of bad network between a client and a server of 127.0.0.1.
#pragma once

#include "support/Loopback.h"

#include <chrono>
#include <cstdint>
#include <mutex>
#include <span>
#include <string>

namespace support {

/// What goes wrong, once a number of bytes have passed in one direction.
struct Fault
{
    enum class Kind : std::uint8_t
    {
        None,
        Close,   ///< the connection ends in order
        Reset,   ///< the connection ends without order
        Stall,   ///< nothing comes through any more, and nobody hangs up
        Delay,   ///< the bytes come later, by `pace`
        Flip,    ///< one bit is another
        Drop,    ///< up to 64 bytes are missing
        Garbage, ///< up to 512 bytes of noise come before
        Trickle  ///< every byte comes alone, `pace` after the one before
    };
    enum class Direction : std::uint8_t
    {
        ToClient,
        ToServer
    };

    Kind kind = Kind::None;
    Direction direction = Direction::ToClient;
    std::size_t offset = 0;
    std::chrono::microseconds pace{0};
    std::uint32_t seed = 0; ///< decides which bit, which bytes

    /// For the message of a failed test.
    [[nodiscard]] std::string text() const;
};

/// Serves one client after the other. A fault holds from when it is set, for the connection that is
/// open or the next one; Delay, Flip, Drop and Garbage happen once.
class FaultProxy
{
public:
    explicit FaultProxy(int serverPort);

    [[nodiscard]] int port() const { return m_listener.port(); }
    void setFault(const Fault& fault);

private:
    struct Path;

    void serve(int client, const std::atomic<bool>& stopping);
    bool pass(const Path& path, const std::atomic<bool>& stopping);
    static bool misbehave(const Path& path, const Fault& fault, std::span<char> bytes,
                          const std::atomic<bool>& stopping);
    static bool trickle(const Path& path, const Fault& fault, std::span<char> bytes,
                        const std::atomic<bool>& stopping);
    /// How many of these bytes pass before the fault, which then is `fault`.
    std::size_t untouched(Fault::Direction direction, std::size_t size, Fault& fault);

    int m_serverPort;
    std::mutex m_mutex; ///< over what follows
    Fault m_fault;
    std::size_t m_passed = 0; ///< bytes in the fault's direction since it was set
    Listener m_listener;
};

} // namespace support
