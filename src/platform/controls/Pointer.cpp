#include "platform/controls/Pointer.h"

#include <QCursor>
#include <QGuiApplication>

namespace controls {

void setMousePointer(Pointer pointer)
{
    if (pointer == mousePointer())
        return;
    if (pointer == Pointer::Hourglass)
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    else
        QGuiApplication::restoreOverrideCursor();
}

Pointer mousePointer()
{
    return QGuiApplication::overrideCursor() ? Pointer::Hourglass : Pointer::Default;
}

} // namespace controls
