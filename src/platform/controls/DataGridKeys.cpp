// The keyboard of the data grid: what the form hears of each key, and what the key does then.
#include "platform/controls/DataGrid.h"
#include "platform/controls/DataGridModel.h"
#include "platform/controls/Keys.h"
#include "platform/controls/ValueListPopup.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>

namespace controls {

namespace {

constexpr int keyBackspace = 8;
constexpr int keySpace = 32;

bool isEnter(const QKeyEvent& event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// The character that KeyPress tells of; 0 for a key without one.
int characterOf(const QKeyEvent& event)
{
    if (isEnter(event))
        return keyEnter;
    if (event.key() == Qt::Key_Backspace)
        return keyBackspace;
    const bool control = event.modifiers().testFlag(Qt::ControlModifier);
    const bool alt = event.modifiers().testFlag(Qt::AltModifier);
    if (control != alt || event.text().isEmpty()) // both together are AltGr
        return 0;
    const char32_t first = event.text().toUcs4().front();
    return QChar::isPrint(first) ? static_cast<int>(first) : 0;
}

bool isModifier(const QKeyEvent& event)
{
    return event.key() == Qt::Key_Shift || event.key() == Qt::Key_Control || event.key() == Qt::Key_Alt ||
           event.key() == Qt::Key_Meta || event.key() == Qt::Key_AltGr;
}

QString textOf(int character)
{
    const auto code = static_cast<char32_t>(character);
    return QString::fromUcs4(&code, 1);
}

} // namespace

void DataGrid::keyPressEvent(QKeyEvent* event)
{
    event->setAccepted(takeKey(*event));
}

/// Tells the form of a key and acts on it. False for a key that goes to the editor, or up to the form.
bool DataGrid::takeKey(const QKeyEvent& event)
{
    if (isModifier(event))
        return false;
    if (!m_edit.active)
        showPlace(); // a command by key is given to the row that the user sees
    const QPointer<DataGrid> self(this);
    const unsigned acts = m_acts;
    const unsigned moves = m_moves;
    if (int key = keyCode(event); key != 0) {
        emit KeyDown(key, shiftState(event.modifiers()));
        if (!self || key == 0 || acts != m_acts || moves != m_moves)
            return true;
    }
    const int pressed = characterOf(event);
    int character = pressed;
    if (pressed != 0 && !askKeyPress(character))
        return true;
    if (pressed == keyEnter) {
        if (acts == m_acts && moves == m_moves)
            goOn();
        return true;
    }
    if (character != 0 && character != keyBackspace && !outside(m_place)) {
        if (!m_model->column(m_place.column).items.isToggled())
            typeText(textOf(character), character);
        else if (character == keySpace)
            toggle(keySpace);
        return true;
    }
    return keyAnywhere(event) || (m_edit.active ? keyInEditor(event) : keyInCell(event));
}

/// False when the form swallowed the character, or the grid went.
bool DataGrid::askKeyPress(int& character)
{
    const QPointer<DataGrid> self(this);
    emit KeyPress(character);
    return self && character != 0;
}

/// Enter that the form left to the grid.
void DataGrid::goOn()
{
    const QPointer<DataGrid> self(this);
    const unsigned moves = m_moves;
    if (endEdit() && self && moves == m_moves)
        tabTo(1);
}

void DataGrid::typeText(const QString& text, int key)
{
    if (!m_edit.active) {
        if (!beginEdit(key))
            return;
        m_edit.editor->clear();
    }
    if (!m_edit.editor)
        return;
    m_edit.editor->insert(text);
    completeFromList(text);
}

bool DataGrid::keyAnywhere(const QKeyEvent& event)
{
    const bool control = event.modifiers().testFlag(Qt::ControlModifier);
    const bool alt = event.modifiers().testFlag(Qt::AltModifier);
    switch (event.key()) {
    case Qt::Key_Tab:
        return !control && tabTo(1);
    case Qt::Key_Backtab:
        return !control && tabTo(-1);
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (alt)
            pressButton();
        else
            moveByKey(event.key(), control);
        return true;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        if (!control)
            moveByKey(event.key(), false);
        return !control;
    case Qt::Key_F4:
        if (!control && !alt)
            pressButton();
        return !control && !alt;
    default:
        break;
    }
    if (event.matches(QKeySequence::Paste)) {
        pasteCell();
        return true;
    }
    return false;
}

bool DataGrid::keyInEditor(const QKeyEvent& event)
{
    if (event.key() == Qt::Key_Escape) {
        cancelEdit();
        return true;
    }
    return event.key() == Qt::Key_F2;
}

bool DataGrid::keyInCell(const QKeyEvent& event)
{
    const bool control = event.modifiers().testFlag(Qt::ControlModifier);
    switch (event.key()) {
    case Qt::Key_F2:
        beginEdit(0);
        return true;
    case Qt::Key_Backspace:
        emptyCell();
        return true;
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
        moveByKey(event.key(), control);
        return true;
    default:
        break;
    }
    if (event.matches(QKeySequence::Copy)) {
        copyCell();
        return true;
    }
    if (event.matches(QKeySequence::Cut)) {
        copyCell();
        emptyCell();
        return true;
    }
    if (asksForMenu(event) && !outside(m_place)) {
        const QPoint at = (cellRect(m_place.row, m_place.column) & viewport()->rect()).center();
        if (hearsMouseDown())
            emit MouseDown(rightButton, 0, at.x(), at.y());
        else
            popUpMenu(viewport()->mapToGlobal(at));
        return true;
    }
    return false;
}

/// A key typed over the open list.
void DataGrid::keyInList(QKeyEvent* event)
{
    const QPointer<DataGrid> self(this);
    const bool taken = takeKey(*event);
    if (!self)
        return;
    if (!taken && m_edit.editor)
        QCoreApplication::sendEvent(m_edit.editor, event);
    if (m_edit.editor)
        m_list->setCurrentRow(m_model->column(m_edit.place.column).items.indexOfStart(m_edit.editor->text()));
    else
        m_list->hide();
}

/// To the next column that can be edited, in this row or the next one that is there. False at the end, with
/// the pending edit stored, for the focus to go on.
bool DataGrid::tabTo(int step)
{
    const bool anyUnlocked = shownColumn(-1, 1, true) >= 0;
    Place to{m_place.row, shownColumn(m_place.column, step, anyUnlocked)};
    if (to.column < 0) {
        to.row += step;
        to.column = shownColumn(step > 0 ? -1 : m_model->columnCount(), step, anyUnlocked);
    }
    if (!outside(to)) {
        moveTo(to);
        return true;
    }
    const QPointer<DataGrid> self(this);
    const unsigned moves = m_moves;
    if (!endEdit() || !self || moves != m_moves)
        return true;
    return false;
}

void DataGrid::moveByKey(int key, bool control)
{
    if (outside(m_place))
        return;
    const int lastRow = m_model->rowCount() - 1;
    const int page = std::max(1, VisibleRows() - 1);
    const int first = shownColumn(-1, 1, false);
    const int last = shownColumn(m_model->columnCount(), -1, false);
    Place to = m_place;
    switch (key) {
    case Qt::Key_Up:
        to.row = control ? 0 : to.row - 1;
        break;
    case Qt::Key_Down:
        to.row = control ? lastRow : to.row + 1;
        break;
    case Qt::Key_PageUp:
        to.row -= page;
        break;
    case Qt::Key_PageDown:
        to.row += page;
        break;
    case Qt::Key_Left:
    case Qt::Key_Right: {
        const int next = shownColumn(to.column, key == Qt::Key_Right ? 1 : -1, false);
        to.column = next < 0 ? to.column : next;
        break;
    }
    case Qt::Key_Home:
        to = {control ? 0 : to.row, first};
        break;
    default:
        to = {control ? lastRow : to.row, last};
        break;
    }
    to.row = std::clamp(to.row, 0, lastRow);
    moveTo(to);
}

bool DataGrid::focusNextPrevChild(bool next)
{
    if (!isVisible() || !isEnabled()) // the focus is sent on, no key was pressed
        return QTableView::focusNextPrevChild(next);
    const QPointer<DataGrid> self(this);
    QKeyEvent key(QEvent::KeyPress, next ? Qt::Key_Tab : Qt::Key_Backtab, Qt::NoModifier);
    if (takeKey(key))
        return true;
    return self && QTableView::focusNextPrevChild(next);
}

/// A composed text starts an edit like a typed character.
void DataGrid::inputMethodEvent(QInputMethodEvent* event)
{
    event->accept();
    const QPointer<DataGrid> self(this);
    if ((event->commitString().isEmpty() && event->preeditString().isEmpty()) || m_edit.active)
        return;
    if (!filterInput(*event) || !self || !beginEdit(0) || !m_edit.editor)
        return;
    m_edit.editor->clear();
    m_edit.editor->removeEventFilter(this); // the form was asked about these characters already
    QCoreApplication::sendEvent(m_edit.editor, event);
    m_edit.editor->installEventFilter(this);
    completeFromList(event->commitString());
}

/// Asks the form about each composed character. False when none is left of a text, or the grid went.
bool DataGrid::filterInput(QInputMethodEvent& event)
{
    const QPointer<DataGrid> self(this);
    const QString composed = event.commitString();
    QString kept;
    for (const char32_t letter : composed.toUcs4()) {
        int character = static_cast<int>(letter);
        if (askKeyPress(character))
            kept += textOf(character);
        if (!self)
            return false;
    }
    if (kept != composed)
        event.setCommitString(kept, event.replacementStart(), event.replacementLength());
    return composed.isEmpty() || !kept.isEmpty();
}

bool DataGrid::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_edit.editor)
        return QTableView::eventFilter(watched, event);
    const QPointer<DataGrid> self(this);
    switch (event->type()) {
    case QEvent::KeyPress: {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool taken = takeKey(*key);
        if (taken || !self)
            return true;
        if (key->key() != Qt::Key_Tab && key->key() != Qt::Key_Backtab)
            return false;
        QTableView::focusNextPrevChild(key->key() == Qt::Key_Tab);
        return true;
    }
    case QEvent::ShortcutOverride:
        // Esc ends the edit, it doesn't close the form.
        if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
            event->accept();
        return false;
    case QEvent::InputMethod: {
        auto* input = static_cast<QInputMethodEvent*>(event);
        return !input->commitString().isEmpty() && !filterInput(*input);
    }
    case QEvent::FocusOut:
        focusLeft(static_cast<QFocusEvent*>(event)->reason());
        return !self;
    case QEvent::MouseButtonPress: {
        const auto* press = static_cast<QMouseEvent*>(event);
        const QPoint at = viewport()->mapFromGlobal(press->globalPosition().toPoint());
        const int button = press->button() == Qt::RightButton ? rightButton : leftButton;
        emit MouseDown(button, shiftState(press->modifiers()), at.x(), at.y());
        return !self || watched != m_edit.editor;
    }
    case QEvent::ContextMenu:
        return hearsMouseDown();
    default:
        return false;
    }
}

} // namespace controls
