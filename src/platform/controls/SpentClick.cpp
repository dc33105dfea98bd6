#include "platform/controls/SpentClick.h"

#include "platform/controls/MessageBox.h"

#include <QAbstractButton>
#include <QGuiApplication>
#include <QMdiSubWindow>
#include <QMouseEvent>

namespace controls {

namespace {

bool pressGoesOn = false;

/// Waits for the press that is under way, which comes before anything that is posted.
class PressWaiter : public QObject
{
public:
    explicit PressWaiter(bool take) : QObject(QCoreApplication::instance()), m_take(take)
    {
        pressGoesOn = !take;
        parent()->installEventFilter(this);
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::MouseButtonPress || !watched->isWidgetType())
            return QObject::eventFilter(watched, event);
        parent()->removeEventFilter(this);
        if (m_take || qobject_cast<QAbstractButton*>(watched))
            return true;
        const auto& press = *static_cast<const QMouseEvent*>(event);
        if (qobject_cast<QMdiSubWindow*>(watched))
            comeBack(watched, press);
        release(watched, press);
        return false;
    }

protected:
    void customEvent(QEvent* /*event*/) override
    {
        pressGoesOn = false;
        parent()->removeEventFilter(this);
        deleteLater();
    }

private:
    /// A frame knows its buttons by the mouse above them, which the box took away.
    static void comeBack(QObject* frame, const QMouseEvent& press)
    {
        QMouseEvent move(QEvent::MouseMove, press.position(), press.scenePosition(), press.globalPosition(),
                         Qt::NoButton, Qt::NoButton, press.modifiers());
        QCoreApplication::sendEvent(frame, &move);
    }

    static void release(QObject* watched, const QMouseEvent& press)
    {
        if (QGuiApplication::mouseButtons().testFlag(press.button()))
            return; // still to come
        QCoreApplication::postEvent(watched,
                                    new QMouseEvent(QEvent::MouseButtonRelease, press.position(),
                                                    press.scenePosition(), press.globalPosition(),
                                                    press.button(), Qt::NoButton, press.modifiers()));
    }

    bool m_take;
};

void awaitPress(bool take)
{
    new PressWaiter(take); // it deletes itself
}

} // namespace

SpentClick::SpentClick(Qt::FocusReason reason)
    : m_reason(reason), m_shown(messageBoxesShown()), m_asked(questionsAsked())
{}

SpentClick::~SpentClick()
{
    const bool take = m_held || m_asked != questionsAsked();
    if (m_reason == Qt::MouseFocusReason && (take || m_shown != messageBoxesShown()))
        awaitPress(take);
}

bool SpentClick::goesOn()
{
    return pressGoesOn;
}

} // namespace controls
