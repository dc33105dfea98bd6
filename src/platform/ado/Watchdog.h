// Time limits over driver calls.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace ado {

/// Holds driver calls to a time limit from a thread of its own. The driver's own limit begins anew with
/// every wait for the network, so that a server that sends little by little never reaches it.
///
/// Within a limit, every call that may wait is marked by a Call. When the limit passes during a call, the
/// first means is used, and when the same call still has not returned five seconds later, the second.
/// Between calls the means are never used, since cancelling an idle statement is not safe; the next Call
/// sees that the limit has passed.
class Watchdog
{
public:
    using Means = std::function<void()>;

    Watchdog() = default;
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// A time limit for as long as it lives; without effect for a duration of 0. One at a time.
    class Limit
    {
    public:
        Limit(Watchdog& watchdog, std::chrono::milliseconds duration, Means first, Means second);
        ~Limit();
        Limit(const Limit&) = delete;
        Limit& operator=(const Limit&) = delete;

    private:
        Watchdog& m_watchdog;
    };

    /// Marks one driver call.
    class Call
    {
    public:
        explicit Call(Watchdog& watchdog);
        ~Call();
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    private:
        Watchdog& m_watchdog;
    };

    /// Whether the limit that is in force, or else the last one, has passed.
    [[nodiscard]] bool expired() const;

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void expire(std::unique_lock<std::mutex>& lock);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::thread m_thread; ///< begins with the first limit
    Means m_first;
    Means m_second;
    Clock::time_point m_deadline;
    Clock::time_point m_wakes = Clock::time_point::max(); ///< when the thread looks again by itself
    unsigned long m_turn = 0;                             ///< counts the limits
    bool m_active = false;
    bool m_inCall = false;
    bool m_expired = false;
    bool m_quit = false;
};

} // namespace ado
