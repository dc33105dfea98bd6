#include "platform/controls/TextBox.h"

#include "platform/controls/Form.h"
#include "platform/controls/Keys.h"
#include "platform/controls/SpentClick.h"

#include <QFocusEvent>
#include <QKeyEvent>

namespace controls {

void TextBox::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    int keyAscii = enter ? keyEnter : 0;
    if (!enter && !event->text().isEmpty())
        keyAscii = event->text().front().unicode();
    if (keyAscii == 0) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    emit KeyPress(keyAscii);
    if (keyAscii != 0)
        QLineEdit::keyPressEvent(event);
    else
        event->accept();
}

void TextBox::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    // Another window or a menu in front is no end of the entry, and a hidden box can't have the focus back.
    const auto reason = event->reason();
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
        reason == Qt::MenuBarFocusReason || isFormGone(this))
        return;
    SpentClick click(reason);
    bool cancel = false;
    emit Validate(cancel);
    if (!cancel)
        return;
    click.hold();
    if (isVisible())
        setFocus();
}

} // namespace controls
