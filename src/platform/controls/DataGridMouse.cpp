// The mouse, the clipboard and the focus of the data grid.
#include "platform/controls/DataGrid.h"
#include "platform/controls/DataGridDelegate.h"
#include "platform/controls/DataGridModel.h"
#include "platform/controls/Form.h"
#include "platform/controls/Keys.h"
#include "platform/controls/Language.h"
#include "platform/controls/SpentClick.h"
#include "platform/controls/ValueListPopup.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMetaMethod>
#include <QMouseEvent>

namespace controls {

namespace {

/// A cell takes one line: the first of what was copied elsewhere, without the tabs between cells.
QString clipboardLine()
{
    QString text = QApplication::clipboard()->text();
    for (const QChar end : {QLatin1Char('\r'), QLatin1Char('\n'), QLatin1Char('\t')})
        text = text.section(end, 0, 0);
    return text;
}

} // namespace

bool DataGrid::hearsMouseDown() const
{
    return isSignalConnected(QMetaMethod::fromSignal(&DataGrid::MouseDown));
}

void DataGrid::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    const QPoint at = event->position().toPoint();
    const QModelIndex below = indexAt(at);
    const Place place{below.row(), below.column()};
    const int shift = shiftState(event->modifiers());
    const QPointer<DataGrid> self(this);
    if (event->button() == Qt::RightButton) {
        if (below.isValid())
            moveTo(place);
        if (self)
            emit MouseDown(rightButton, shift, at.x(), at.y());
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    emit MouseDown(leftButton, shift, at.x(), at.y());
    if (!self)
        return;
    if (outside(place))
        endEdit();
    else
        pressCell(place, at);
}

/// `at` is where the cell was when the button went down: making it current may scroll it away from there.
void DataGrid::pressCell(Place place, const QPoint& at)
{
    const QRect cell = cellRect(place.row, place.column);
    const bool wasCurrent = place == m_place;
    const bool toggled = m_model->column(place.column).items.isToggled();
    const QPointer<DataGrid> self(this);
    if (!moveTo(place) || !self)
        return;
    if (toggled) {
        if (m_delegate->glyphRect(cell).contains(at))
            toggle(0);
        return;
    }
    if (!wasCurrent)
        return;
    if (m_delegate->buttonRect(cell, place.column).contains(at))
        pressButton();
    else if (beginEdit(0))
        m_edit.editor->setCursorPosition(
            m_edit.editor->cursorPositionAt(m_edit.editor->mapFrom(viewport(), at)));
}

// The view's own ways to move and to select would pass by the form.
void DataGrid::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
}

void DataGrid::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
}

void DataGrid::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void DataGrid::contextMenuEvent(QContextMenuEvent* event)
{
    if (!hearsMouseDown() && !outside(m_place))
        popUpMenu(event->globalPos());
}

void DataGrid::popUpMenu(const QPoint& at)
{
    const QPointer<DataGrid> self(this);
    QMenu menu;
    const bool text = canEdit() && !m_model->column(m_place.column).items.isToggled();
    const QAction* const cut = menu.addAction(uiText("Cor&tar", "Cu&t"));
    const QAction* const copy = menu.addAction(copyCaption());
    const QAction* const paste = menu.addAction(uiText("&Pegar", "&Paste"));
    const QAction* const empty = menu.addAction(uiText("&Borrar", "&Delete"));
    for (QAction* action : menu.actions())
        action->setEnabled(text || action == copy);
    const QAction* const chosen = menu.exec(at);
    if (!self || !chosen)
        return;
    if (chosen == copy || chosen == cut)
        copyCell();
    if (chosen == paste)
        pasteCell();
    if (chosen == cut || chosen == empty)
        emptyCell();
}

void DataGrid::copyCell()
{
    if (!outside(m_place))
        QApplication::clipboard()->setText(m_model->text(m_place.row, m_place.column));
}

/// In place of the whole text, or of what is selected in the editor.
void DataGrid::pasteCell()
{
    const QString text = clipboardLine();
    if (!text.isEmpty())
        typeText(text, 0);
}

void DataGrid::emptyCell()
{
    if (beginEdit(0))
        m_edit.editor->clear();
}

void DataGrid::focusInEvent(QFocusEvent* event)
{
    // The view would make the first cell current where it knows of none, as after a reset.
    m_marking = true;
    QTableView::focusInEvent(event);
    markPlace();
    if (m_edit.editor)
        m_edit.editor->setFocus(event->reason());
}

void DataGrid::focusOutEvent(QFocusEvent* event)
{
    QTableView::focusOutEvent(event);
    focusLeft(event->reason());
}

void DataGrid::focusLeft(Qt::FocusReason reason)
{
    const bool stays = reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason ||
                       reason == Qt::MenuBarFocusReason;
    if (stays || m_losingFocus || hasFocusInside())
        return;
    if (isFormGone(this)) {
        dropEdit();
        return;
    }
    if (SpentClick::goesOn()) {
        endEdit();
        return;
    }
    const QPointer<DataGrid> self(this);
    SpentClick click(reason);
    m_losingFocus = true;
    emit LostFocus();
    if (!self)
        return;
    m_losingFocus = false;
    if (!hasFocusInside() && !endEdit())
        click.hold();
}

bool DataGrid::hasFocusInside() const
{
    // The window's own: the application has none while a message box goes.
    const QWidget* const focused = window()->focusWidget();
    return focused && (focused == this || focused == m_edit.editor);
}

} // namespace controls
