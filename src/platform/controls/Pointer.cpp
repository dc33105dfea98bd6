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

ArrowWhileAsking::ArrowWhileAsking()
{
    if (mousePointer() == Pointer::Hourglass)
        QGuiApplication::changeOverrideCursor(QCursor(Qt::ArrowCursor));
}

ArrowWhileAsking::~ArrowWhileAsking()
{
    if (mousePointer() == Pointer::Hourglass)
        QGuiApplication::changeOverrideCursor(QCursor(Qt::WaitCursor));
}

} // namespace controls
