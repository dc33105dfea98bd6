// Notices what a client sends while its request runs: the wish to cancel it, or its end.
#pragma once

#include "tds/socket.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <thread>
#include <unordered_map>

namespace practice::tds {

/// Asked by the watch when there is something to read.
class Watched
{
public:
    virtual ~Watched() = default;
    /// True while a cancel is under way: the watch asks again until it is done, so that a cancel
    /// that came a moment too early is not lost.
    virtual bool interrupted() = 0;
};

/// One thread for all connections.
class AttentionWatch
{
public:
    AttentionWatch();
    ~AttentionWatch();
    AttentionWatch(const AttentionWatch&) = delete;
    AttentionWatch& operator=(const AttentionWatch&) = delete;

    void add(int descriptor, Watched& watched);
    /// Reports once, from now on.
    void arm(int descriptor);
    /// Afterwards `watched` is not called any more.
    void remove(int descriptor);

private:
    void run();
    void ask(int descriptor);
    void askAgain();

    Descriptor epoll_;
    Descriptor wake_;
    std::mutex mutex_;
    std::unordered_map<int, Watched*> watched_;
    std::unordered_map<int, Watched*> cancelling_;
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

} // namespace practice::tds
