#include "platform/controls/TextBox.h"

#include "platform/controls/Keys.h"

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

} // namespace controls
