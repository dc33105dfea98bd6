#include "platform/controls/Keys.h"

#include <QApplication>
#include <QHash>
#include <QKeyEvent>
#include <QWidget>

namespace controls {

void synthesizeTab()
{
    QWidget* target = QApplication::focusWidget();
    if (!target)
        return;
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease})
        QCoreApplication::postEvent(target,
                                    new QKeyEvent(type, Qt::Key_Tab, Qt::NoModifier, QStringLiteral("\t")));
}

int shiftState(Qt::KeyboardModifiers modifiers)
{
    return (modifiers.testFlag(Qt::ShiftModifier) ? 1 : 0) |
           (modifiers.testFlag(Qt::ControlModifier) ? 2 : 0) | (modifiers.testFlag(Qt::AltModifier) ? 4 : 0);
}

int keyCode(const QKeyEvent& event)
{
    constexpr int classicF1 = 112;
    static const QHash<int, int> codes{
        {Qt::Key_Backspace, 8},    {Qt::Key_Tab, 9},     {Qt::Key_Backtab, 9}, {Qt::Key_Return, keyEnter},
        {Qt::Key_Enter, keyEnter}, {Qt::Key_Escape, 27}, {Qt::Key_PageUp, 33}, {Qt::Key_PageDown, 34},
        {Qt::Key_End, 35},         {Qt::Key_Home, 36},   {Qt::Key_Left, 37},   {Qt::Key_Up, 38},
        {Qt::Key_Right, 39},       {Qt::Key_Down, 40},   {Qt::Key_Insert, 45}, {Qt::Key_Delete, 46}};
    const int key = event.key();
    if (key >= Qt::Key_F1 && key <= Qt::Key_F16)
        return classicF1 + (key - Qt::Key_F1);
    const bool plain = key == Qt::Key_Space || (key >= Qt::Key_A && key <= Qt::Key_Z) ||
                       (key >= Qt::Key_0 && key <= Qt::Key_9);
    return plain ? key : codes.value(key);
}

bool asksForMenu(const QKeyEvent& event)
{
    return event.key() == Qt::Key_Menu ||
           (event.key() == Qt::Key_F10 && event.modifiers().testFlag(Qt::ShiftModifier));
}

} // namespace controls
