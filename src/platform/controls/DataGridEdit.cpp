// The life of an edit in the data grid, from the question before it to what is stored.
#include "platform/controls/DataGrid.h"
#include "platform/controls/DataGridDelegate.h"
#include "platform/controls/DataGridModel.h"
#include "platform/controls/ValueListPopup.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace controls {

bool DataGrid::EditActive() const
{
    return m_edit.active;
}

void DataGrid::setEditActive(bool active)
{
    ++m_acts;
    if (active)
        beginEdit(0);
    else
        endEdit();
}

bool DataGrid::canEdit() const
{
    return isEnabled() && m_model->holds(m_place.row, m_place.column) &&
           m_place.column < m_model->columnCount() && !m_model->column(m_place.column).locked;
}

/// The column's cell in the current row is the one being edited.
bool DataGrid::edits(int column) const
{
    return m_edit.active && m_edit.place == Place{m_place.row, column};
}

QString DataGrid::pendingText() const
{
    return m_edit.editor ? m_edit.editor->text() : m_edit.toggled;
}

QString DataGrid::pendingValue() const
{
    return m_model->column(m_edit.place.column).items.valueOf(pendingText());
}

void DataGrid::setPendingText(const QString& text)
{
    if (!m_edit.editor) {
        m_edit.toggled = text;
        return;
    }
    m_edit.editor->setText(text);
    m_edit.editor->selectAll();
}

/// Whether the form lets the current cell be edited, and it is still the same cell then.
bool DataGrid::askToEdit(int key)
{
    if (m_edit.active || !canEdit())
        return false;
    const QPointer<DataGrid> self(this);
    const unsigned moves = m_moves;
    bool cancel = false;
    emit BeforeColEdit(m_place.column, key, cancel);
    if (!self || cancel || moves != m_moves || m_edit.active || !canEdit())
        return false;
    ++m_edit.serial;
    m_edit.place = m_place;
    m_edit.oldText = m_model->text(m_place.row, m_place.column);
    m_edit.active = true;
    m_edit.ending = false;
    return true;
}

bool DataGrid::beginEdit(int key)
{
    if (canEdit() && m_model->column(m_place.column).items.isToggled())
        return false;
    if (!askToEdit(key))
        return false;
    makeEditor();
    markPlace();
    showPlace();
    return true;
}

void DataGrid::toggle(int key)
{
    if (!askToEdit(key))
        return;
    m_edit.toggled = m_model->column(m_place.column).items.next(m_edit.oldText);
    endEdit();
}

/// Stores the pending text unless the form objects. False when the old value came back, or the edit or the
/// grid went in a handler.
bool DataGrid::endEdit()
{
    if (!m_edit.active || m_edit.ending)
        return true;
    m_edit.ending = true;
    hideList();
    const QPointer<DataGrid> self(this);
    const unsigned serial = m_edit.serial;
    const Place place = m_edit.place;
    const bool changed = pendingText() != m_edit.oldText;
    const bool accepted = !changed || acceptEdit();
    if (!self || !m_edit.active || m_edit.serial != serial)
        return false;
    const QString value = pendingValue();
    endEditing();
    if (changed && accepted && m_model->holds(place.row, place.column)) {
        m_model->array()->set(place.row, place.column, value);
        emit AfterColUpdate(place.column);
    }
    if (self)
        emit AfterColEdit(place.column);
    return self && accepted;
}

bool DataGrid::acceptEdit()
{
    const QPointer<DataGrid> self(this);
    const int column = m_edit.place.column;
    const controls::ValueItems& items = m_model->column(column).items;
    const QString text = pendingText();
    if (items.presentation() == ValueItems::Presentation::DropDown && !text.trimmed().isEmpty() &&
        items.indexOfText(text) < 0) {
        emit ValueItemError(column);
        return false;
    }
    bool cancel = false;
    emit BeforeColUpdate(column, m_model->value(m_edit.place.row, column), cancel);
    return self && !cancel;
}

/// The old text comes back; unlike a dropped edit this is an end that the form hears of.
void DataGrid::cancelEdit()
{
    if (!m_edit.active || m_edit.ending)
        return;
    const int column = m_edit.place.column;
    endEditing();
    emit AfterColEdit(column);
}

void DataGrid::dropEdit()
{
    if (m_edit.active)
        endEditing();
}

void DataGrid::makeEditor()
{
    const GridColumnData& shape = m_model->column(m_edit.place.column);
    auto* editor = new QLineEdit(m_edit.oldText, viewport());
    editor->setObjectName(QStringLiteral("gridEditor"));
    editor->setFrame(false);
    editor->setAlignment(shape.alignment | Qt::AlignVCenter);
    const QModelIndex cell = m_model->index(m_edit.place.row, m_edit.place.column);
    editor->setAccessibleName(m_model->data(cell, Qt::AccessibleTextRole).toString());
    editor->setAutoFillBackground(true);
    editor->installEventFilter(this);
    m_edit.editor = editor;
    placeEditor();
    editor->show();
    editor->selectAll();
    if (hasFocus())
        editor->setFocus(Qt::OtherFocusReason);
}

void DataGrid::placeEditor()
{
    if (!m_edit.editor)
        return;
    QRect place = cellRect(m_edit.place.row, m_edit.place.column);
    const QRect button = m_delegate->buttonRect(place, m_edit.place.column);
    if (!button.isEmpty())
        place.setRight(button.left() - 1);
    m_edit.editor->setGeometry(place.adjusted(1, 1, -1, -1));
}

void DataGrid::endEditing()
{
    m_edit.active = false;
    m_edit.ending = false;
    hideList();
    QLineEdit* const editor = m_edit.editor;
    m_edit.editor = nullptr;
    if (editor) {
        editor->removeEventFilter(this);
        if (editor->hasFocus())
            setFocus(Qt::OtherFocusReason);
        editor->hide();
        editor->setObjectName(QString());
        editor->deleteLater(); // it may be the one that is telling us of a key
    }
    markPlace();
}

/// Completes what was typed to the first item that begins so, with the rest selected.
void DataGrid::completeFromList(const QString& typed)
{
    const controls::ValueItems& items = m_model->column(m_edit.place.column).items;
    QLineEdit* const editor = m_edit.editor;
    if (items.presentation() != ValueItems::Presentation::DropDown || typed.isEmpty() ||
        editor->cursorPosition() != editor->text().size())
        return;
    const int item = items.indexOfStart(editor->text());
    if (item < 0)
        return;
    const auto length = static_cast<int>(editor->text().size());
    const QString& text = items.Item(item).text;
    editor->setText(text);
    editor->setSelection(static_cast<int>(text.size()), length - static_cast<int>(text.size()));
}

void DataGrid::pressButton()
{
    if (outside(m_place) || !m_delegate->hasButton(m_place.column))
        return;
    const QPointer<DataGrid> self(this);
    const unsigned moves = m_moves;
    emit ButtonClick(m_place.column);
    if (self && moves == m_moves && !outside(m_place))
        openList();
}

void DataGrid::openList()
{
    if (m_model->column(m_place.column).items.presentation() != ValueItems::Presentation::DropDown ||
        (!m_edit.active && !beginEdit(0)) || !m_edit.editor)
        return;
    const controls::ValueItems& items = m_model->column(m_place.column).items;
    QStringList texts;
    for (int item = 0; item < items.Count(); ++item)
        texts.append(items.Item(item).text);
    if (!m_list) {
        m_list = new ValueListPopup(this);
        connect(m_list, &ValueListPopup::chosen, this, [this](const QString& text) { setPendingText(text); });
        connect(m_list, &ValueListPopup::keyTyped, this, &DataGrid::keyInList);
    }
    const QRect cell = cellRect(m_place.row, m_place.column);
    m_list->open(texts, items.indexOfText(m_edit.editor->text()),
                 {viewport()->mapToGlobal(cell.topLeft()), cell.size()});
}

void DataGrid::hideList()
{
    if (m_list)
        m_list->hide();
}

} // namespace controls
