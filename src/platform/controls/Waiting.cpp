#include "platform/controls/Waiting.h"

#include <QAbstractEventDispatcher>
#include <QCursor>
#include <QEventLoop>
#include <QGuiApplication>
#include <QThread>

#include <thread>

namespace controls {

namespace {

int waits = 0;

/// Above whatever pointer there is.
class Hourglass
{
public:
    Hourglass()
    {
        ++waits;
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    }
    ~Hourglass()
    {
        QGuiApplication::restoreOverrideCursor();
        --waits;
    }
    Hourglass(const Hourglass&) = delete;
    Hourglass& operator=(const Hourglass&) = delete;
};

QAbstractEventDispatcher* dispatcher()
{
    const auto* program = QCoreApplication::instance();
    return program ? QAbstractEventDispatcher::instance(program->thread()) : nullptr;
}

} // namespace

void waitPainting(const std::function<bool()>& isDone)
{
    if (!dispatcher() || QThread::currentThread() != QCoreApplication::instance()->thread()) {
        while (!isDone())
            std::this_thread::sleep_for(std::chrono::milliseconds(1)); // the program is at its end
        return;
    }
    const Hourglass hourglass;
    QEventLoop loop;
    while (!isDone())
        loop.processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::WaitForMoreEvents);
}

void wakeWaiting()
{
    if (auto* events = dispatcher())
        events->wakeUp();
}

bool isWaiting()
{
    return waits > 0;
}

} // namespace controls
