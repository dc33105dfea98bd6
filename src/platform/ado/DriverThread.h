// The thread on which a session calls its driver.
#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>

namespace ado {

/// What the caller of a driver does until its call returns.
struct Waiter
{
    /// Called on the caller's thread; comes back soon after the condition holds, which any thread may ask.
    std::function<void(const std::function<bool()>& isDone)> wait;
    /// Called on another thread when the condition holds.
    std::function<void()> wake;
};

/// Without a waiter, as at first, drivers are called on their callers' threads.
void setWaiter(Waiter waiter);

/// Runs calls one at a time on a thread of its own, which begins with the first. The caller sees an ordinary
/// call: it comes back with the result or the exception. For some milliseconds the caller just sleeps, then
/// it waits as the waiter does; a waiter that lets something else call meanwhile makes that call fail.
class DriverThread
{
public:
    DriverThread() = default;
    ~DriverThread();
    DriverThread(const DriverThread&) = delete;
    DriverThread& operator=(const DriverThread&) = delete;

    template <class Work>
    auto run(Work work) -> decltype(work())
    {
        if constexpr (std::is_void_v<decltype(work())>) {
            call(work);
        } else {
            std::optional<decltype(work())> outcome;
            call([&] { outcome = work(); });
            return *std::move(outcome);
        }
    }

private:
    void call(const std::function<void()>& work);
    void begin(const std::function<void()>& work);
    void serve();
    bool isDone();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::thread m_thread;
    const std::function<void()>* m_work = nullptr; ///< the call under way
    std::exception_ptr m_failure;                  ///< what it threw
    bool m_isCalling = false;                      ///< seen by the caller's thread alone
    bool m_callerSleeps = false;                   ///< and needs no waking by the waiter
    bool m_quit = false;
};

} // namespace ado
