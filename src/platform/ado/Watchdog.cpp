#include "platform/ado/Watchdog.h"

namespace ado {

namespace {

/// What the first means gets before the second is used.
constexpr std::chrono::seconds grace{5};

} // namespace

Watchdog::~Watchdog()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_quit = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

bool Watchdog::expired() const
{
    const std::lock_guard lock(m_mutex);
    return m_expired;
}

void Watchdog::run()
{
    std::unique_lock lock(m_mutex);
    while (!m_quit) {
        m_wakes = m_active ? m_deadline : Clock::time_point::max();
        if (!m_active)
            m_changed.wait(lock);
        else if (Clock::now() < m_deadline)
            m_changed.wait_until(lock, m_deadline);
        else
            expire(lock);
    }
}

void Watchdog::expire(std::unique_lock<std::mutex>& lock)
{
    m_expired = true;
    // The next limit may begin before this thread has seen the end of the present one.
    const auto isOver = [this, turn = m_turn] { return m_quit || !m_active || m_turn != turn; };
    if (m_inCall)
        m_first();
    // The call that was running may go on, and a later one may hang as well.
    while (!m_changed.wait_for(lock, grace, isOver))
        if (m_inCall)
            m_second();
}

Watchdog::Limit::Limit(Watchdog& watchdog, std::chrono::milliseconds duration, Means first, Means second)
    : m_watchdog(watchdog)
{
    bool isEarlier = false;
    {
        const std::lock_guard lock(watchdog.m_mutex);
        watchdog.m_first = std::move(first);
        watchdog.m_second = std::move(second);
        watchdog.m_deadline = Clock::now() + duration;
        watchdog.m_expired = false;
        ++watchdog.m_turn;
        watchdog.m_active = duration.count() > 0;
        if (watchdog.m_active && !watchdog.m_thread.joinable())
            watchdog.m_thread = std::thread([&watchdog] { watchdog.run(); });
        isEarlier = watchdog.m_active && watchdog.m_deadline < watchdog.m_wakes;
    }
    // Limits of thousands of short statements, each ending later than the last, leave the thread asleep.
    if (isEarlier)
        watchdog.m_changed.notify_all();
}

Watchdog::Limit::~Limit()
{
    bool hasExpired = false;
    {
        const std::lock_guard lock(m_watchdog.m_mutex);
        m_watchdog.m_active = false;
        hasExpired = m_watchdog.m_expired;
    }
    if (hasExpired)
        m_watchdog.m_changed.notify_all();
}

Watchdog::Call::Call(Watchdog& watchdog) : m_watchdog(watchdog)
{
    const std::lock_guard lock(watchdog.m_mutex);
    watchdog.m_inCall = true;
}

Watchdog::Call::~Call()
{
    const std::lock_guard lock(m_watchdog.m_mutex);
    m_watchdog.m_inCall = false;
}

} // namespace ado
