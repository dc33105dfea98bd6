#include "platform/controls/SpentClick.h"

#include "platform/controls/MessageBox.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

namespace controls {

namespace {

/// Takes the press that is under way, which comes before anything that is posted.
class PressTaker : public QObject
{
public:
    PressTaker() : QObject(QCoreApplication::instance())
    {
        parent()->installEventFilter(this);
        QMetaObject::invokeMethod(this, &PressTaker::finish, Qt::QueuedConnection);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::MouseButtonPress || !watched->isWidgetType())
            return QObject::eventFilter(watched, event);
        parent()->removeEventFilter(this);
        return true;
    }

private:
    void finish()
    {
        parent()->removeEventFilter(this);
        deleteLater();
    }
};

} // namespace

SpentClick::SpentClick(Qt::FocusReason reason) : m_reason(reason), m_shown(messageBoxesShown()) {}

SpentClick::~SpentClick()
{
    if (m_reason == Qt::MouseFocusReason && m_shown != messageBoxesShown())
        new PressTaker; // it deletes itself
}

} // namespace controls
