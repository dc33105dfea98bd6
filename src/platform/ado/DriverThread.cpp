#include "platform/ado/DriverThread.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/basic/Language.h"
#include "platform/basic/RuntimeError.h"

#include <chrono>
#include <utility>

namespace ado {

namespace {

/// Most statements have their answer by then.
constexpr std::chrono::milliseconds shortWait{10};

Waiter& theWaiter()
{
    static Waiter waiter;
    return waiter;
}

} // namespace

void setWaiter(Waiter waiter)
{
    theWaiter() = std::move(waiter);
}

DriverThread::~DriverThread()
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

void DriverThread::serve()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_work != nullptr || m_quit; });
        if (m_work == nullptr)
            return;
        lock.unlock();
        std::exception_ptr failure;
        try {
            (*m_work)();
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        m_failure = std::move(failure);
        m_work = nullptr;
        if (m_callerSleeps)
            m_changed.notify_all();
        else
            theWaiter().wake();
    }
}

bool DriverThread::isDone()
{
    const std::lock_guard lock(m_mutex);
    return m_work == nullptr;
}

/// Hands the call over, and sleeps a little.
void DriverThread::begin(const std::function<void()>& work)
{
    std::unique_lock lock(m_mutex);
    m_work = &work;
    m_callerSleeps = true;
    if (!m_thread.joinable())
        m_thread = std::thread([this] { serve(); });
    m_changed.notify_all();
    m_changed.wait_for(lock, shortWait, [this] { return m_work == nullptr; });
    m_callerSleeps = false;
}

void DriverThread::call(const std::function<void()>& work)
{
    if (!theWaiter().wait) {
        work();
        return;
    }
    if (m_isCalling)
        basic::raise(number::DriverFailure,
                     basic::uiText("El servidor trabaja todavía en la sentencia anterior.",
                                   "The server is still at work on the statement before."));
    m_isCalling = true;
    begin(work);
    if (!isDone())
        theWaiter().wait([this] { return isDone(); });
    m_isCalling = false;
    if (m_failure)
        std::rethrow_exception(std::exchange(m_failure, nullptr));
}

} // namespace ado
