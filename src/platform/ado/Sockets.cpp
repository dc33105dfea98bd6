#include "platform/ado/Sockets.h"

#include <algorithm>
#include <cstdlib>
#include <dirent.h>
#include <memory>
#include <optional>
#include <sys/socket.h>
#include <sys/stat.h>

namespace ado {

namespace {

std::mutex& turns()
{
    static std::mutex mutex;
    return mutex;
}

bool isNetworkSocket(int descriptor)
{
    int domain = 0;
    socklen_t size = sizeof domain;
    return getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &domain, &size) == 0 &&
           (domain == AF_INET || domain == AF_INET6);
}

std::optional<ino_t> socketInode(int descriptor)
{
    struct stat facts = {};
    if (fstat(descriptor, &facts) != 0 || !S_ISSOCK(facts.st_mode))
        return std::nullopt;
    return facts.st_ino;
}

} // namespace

SocketTracker::SocketTracker() : m_turn(turns()), m_before(openSockets()) {}

std::set<SocketTracker::Socket> SocketTracker::openSockets()
{
    std::set<Socket> found;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), closedir);
    if (!folder)
        return found;
    while (const dirent* const entry = readdir(folder.get())) {
        char* end = nullptr;
        const auto descriptor = static_cast<int>(std::strtol(entry->d_name, &end, 10));
        if (*end != '\0')
            continue;
        const auto inode = socketInode(descriptor);
        if (inode && isNetworkSocket(descriptor))
            found.insert({descriptor, *inode});
    }
    return found;
}

std::vector<SocketTracker::Socket> SocketTracker::opened() const
{
    std::vector<Socket> result;
    const std::set<Socket> now = openSockets();
    std::set_difference(now.begin(), now.end(), m_before.begin(), m_before.end(), std::back_inserter(result));
    return result;
}

void SocketTracker::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_known = opened();
        m_tracking = false;
    }
    m_turn.unlock();
}

void SocketTracker::shutDown()
{
    const std::lock_guard lock(m_mutex);
    if (m_tracking)
        m_known = opened();
    for (const Socket& socket : m_known)
        if (socketInode(socket.descriptor) == socket.inode)
            shutdown(socket.descriptor, SHUT_RDWR);
}

} // namespace ado
