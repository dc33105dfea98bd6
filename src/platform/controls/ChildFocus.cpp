#include "platform/controls/ChildFocus.h"

#include <QApplication>
#include <QFocusEvent>
#include <QMdiArea>

#include <utility>

namespace controls {

ChildFocus::ChildFocus(QMdiArea* area) : QObject(area), m_area(area)
{
    connect(qApp, &QApplication::focusChanged, this, &ChildFocus::later);
    connect(area, &QMdiArea::subWindowActivated, this, &ChildFocus::later);
    m_turn.setSingleShot(true);
    connect(&m_turn, &QTimer::timeout, this, &ChildFocus::settle);
    qApp->installEventFilter(this);
}

// While children change places the focus passes controls that nobody chose: only a click is a choice at once,
// and the next key finds all settled.
bool ChildFocus::eventFilter(QObject* watched, QEvent* event)
{
    if (m_turn.isActive() && (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress))
        settle();
    if (event->type() == QEvent::FocusIn && watched->isWidgetType() &&
        static_cast<QFocusEvent*>(event)->reason() == Qt::MouseFocusReason)
        remember(static_cast<QWidget*>(watched));
    return QObject::eventFilter(watched, event);
}

void ChildFocus::later()
{
    m_turn.start();
}

void ChildFocus::settle()
{
    m_turn.stop();
    QMdiSubWindow* active = m_area->activeSubWindow();
    if (!active)
        return;
    const bool changed = std::exchange(m_active, active) != active;
    if (isAstray() || (changed && m_last.contains(active)))
        giveBack();
    else
        remember(QApplication::focusWidget());
}

void ChildFocus::remember(QWidget* control)
{
    for (const QMdiSubWindow* frame : m_area->subWindowList()) {
        if (!frame->widget() || !frame->widget()->isAncestorOf(control))
            continue;
        if (!m_last.contains(frame))
            connect(frame, &QObject::destroyed, this, [this](const QObject* gone) { m_last.remove(gone); });
        m_last[frame] = control;
    }
}

/// Nowhere, or in the area but outside the active child's controls.
bool ChildFocus::isAstray() const
{
    const QWidget* focus = QApplication::focusWidget();
    if (!focus || focus == m_area || focus == m_area->window())
        return true;
    return m_area->isAncestorOf(focus) && !m_active->isAncestorOf(focus);
}

void ChildFocus::giveBack() const
{
    const bool movedByKeys = QWidget::mouseGrabber() == m_active;
    if (movedByKeys || !m_active->isVisible() || m_active->isMinimized() ||
        QApplication::activeWindow() != m_area->window())
        return;
    QWidget* last = m_last.value(m_active);
    if (!last && m_active->widget())
        last = m_active->widget()->focusWidget();
    if (last && last->isVisible() && last->isEnabled())
        last->setFocus(Qt::ActiveWindowFocusReason);
}

} // namespace controls
