// The sockets that the driver opens, so that a hanging one can be shut.
#pragma once

#include <mutex>
#include <set>
#include <sys/types.h>
#include <tuple>
#include <vector>

namespace ado {

/// The network sockets that a driver opens while it connects, found by comparing the process's sockets.
/// Drivers do not tell them, and shutting one is the only thing that ends a call that waits for a server
/// which neither answers nor closes. Only one tracker tracks at a time in a process; another waits.
class SocketTracker
{
public:
    /// Begins to track: sockets that are open now are not the driver's.
    SocketTracker();

    /// Ends the tracking; what was opened until now stays known.
    void stop();
    /// Ends both directions of the known sockets, and of those opened since the tracking began. From any
    /// thread.
    void shutDown();

private:
    struct Socket
    {
        int descriptor;
        ino_t inode; ///< tells a descriptor that was given to another file since
        bool operator<(const Socket& other) const
        {
            return std::tie(descriptor, inode) < std::tie(other.descriptor, other.inode);
        }
    };
    static std::set<Socket> openSockets();
    [[nodiscard]] std::vector<Socket> opened() const;

    std::unique_lock<std::mutex> m_turn;
    std::mutex m_mutex;
    std::set<Socket> m_before;
    std::vector<Socket> m_known;
    bool m_tracking = true;
};

} // namespace ado
