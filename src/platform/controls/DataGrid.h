// A grid over an array of texts: shows the array's rows and writes them in place, with a say for its form.
#pragma once

#include "platform/basic/BoundedArray.h"
#include "platform/controls/ValueItems.h"

#include <QPointer>
#include <QString>
#include <QTableView>

class QLineEdit;

namespace controls {

class DataGrid;
class DataGridDelegate;
class DataGridModel;
class RowMarks;
class ValueListPopup;

/// One column of a grid, by its number; cheap to copy, valid as long as the grid. `Text` and `Value` are
/// those of the cell in the current row. They differ where value items translate: value "3", text "char".
///
/// While the cell is being edited (and in BeforeColUpdate and ValueItemError) reading gives the pending
/// text, and writing replaces it: the edit goes on and is stored with all its events later. Otherwise
/// reading gives what the array holds, and writing writes the array at once, without an event. Without a
/// current row, or where the array has no such column, reading gives an empty text and writing does nothing.
class GridColumn
{
public:
    GridColumn(DataGrid& grid, int column) : m_grid(&grid), m_column(column) {}

    [[nodiscard]] QString Text() const;
    void setText(const QString& text);
    [[nodiscard]] QString Value() const;
    void setValue(const QString& value);

    [[nodiscard]] QString Caption() const;
    void setCaption(const QString& caption);
    [[nodiscard]] bool Visible() const;
    void setVisible(bool visible);
    /// No cell of a locked column can be edited by hand, nor toggled; the program may still write it. It
    /// shows in the current row, since forms set it for that row. Locking ends no edit that is under way.
    [[nodiscard]] bool Locked() const;
    void setLocked(bool locked);
    /// A button in the current cell, besides the arrow that a drop-down has anyway.
    [[nodiscard]] bool Button() const;
    void setButton(bool button);
    /// Of the cells and the header; left unless set.
    void setAlignment(Qt::Alignment alignment);
    /// In pixels, at least what the caption needs. A width that the user set stays until the program sets
    /// one.
    [[nodiscard]] int Width() const;
    void setWidth(int width);
    [[nodiscard]] controls::ValueItems& ValueItems() const;

private:
    DataGrid* m_grid;
    int m_column;
};

/// The form owns the array; the grid refers to it, shows each change of it at once, and is unbound when the
/// array is destroyed. Rows beyond the array never exist: the grid adds none. Rows and columns count from 0.
///
/// Place. `FirstRow` is the array row of the first visible row, `Row` the current row counted from there, so
/// that `FirstRow` plus `Row` is always its array row (`Bookmark`); Row is negative for a current row above
/// the page. Without a current row Row and Bookmark are -1. They may be set before the grid is shown.
///
/// **Events of an edit**, in their order, as slots of the form:
///  1. `BeforeColEdit(column, key, cancel)`: before a cell enters an edit, by a typed character (`key` is its
///     code), F2 (0), Space on a tick (32), a click (0) or a list (0). With `cancel` there is no edit.
///  2. For each key while the grid has the focus, edit or not: `KeyDown(code)`, then, for a character,
///     Backspace (8) and Enter (13), `KeyPress(character)`. Either may be set to 0 to swallow the key. The
///     key that starts an edit comes first of all: KeyDown, KeyPress, BeforeColEdit.
///  3. When the edit ends with another text than it began with: `ValueItemError(column)` if the column has a
///     drop-down and no item of the pending text (an empty text is no error): the cell keeps its old value.
///     Otherwise `BeforeColUpdate(column, oldValue, cancel)`; with `cancel` the cell keeps its old value;
///     else the array is written, and `AfterColUpdate(column)` follows.
///  4. `AfterColEdit(column)`, in any case: stored, cancelled, unchanged or given up with Esc.
/// Up to step 3 the pending text shows in `Text` of the column and the array holds the old value; from
/// AfterColUpdate on, and after a cancel, Text is what the array holds. A toggled tick or picture runs 1, 3
/// and 4 at once; a text taken from the open list is pending like a typed one.
///
/// **Events of a move**, by hand or by program: a pending edit first ends as above. Then
/// `BeforeRowColChange(cancel)` at the old cell and `RowColChange(lastRow, lastColumn)` at the new one;
/// lastRow is an array row, -1 for none. Going to the cell that is current already is no move and ends no
/// edit. A move is given up when its edit was refused (ValueItemError, or `cancel` in BeforeColUpdate) and
/// when a handler itself moved: the handler's move stands. So setting Row to another row and back stores a
/// pending edit.
///
/// `LostFocus()` comes when the focus goes to another control of the window, with the edit still pending; if
/// the focus isn't back when it returns, the edit ends then as in step 3. A pop-up, a message box or another
/// program in front is no loss; a form that closes drops what is pending, so it stores that before (see
/// above). What becomes of a click that took the focus while a box was shown: SpentClick.h. `MouseDown` comes
/// before a left button acts, and after a right button has made the cell below it current.
/// `ButtonClick(column)` comes when the button or arrow of the current cell is pressed and when the list is
/// asked for by key; the list opens after it, with the items it left.
///
/// Binding, ReBind and Refresh run no events; ReBind and a change of the array's shape drop a pending edit.
///
/// **What a handler may do**: anything. It may move, write cells, rebind, give the focus away, show a message
/// box, close the form or destroy the grid; what the grid was about to do then is given up if it no longer
/// fits. While BeforeColUpdate or ValueItemError runs, no second end of the same edit begins: a move in
/// there moves only. Enter that a handler neither swallows nor answers (by moving, by writing a cell, by
/// setting the focus) ends the edit and goes to the next cell; a key that KeyDown answered so goes no
/// further.
///
/// By hand: typing replaces, Backspace empties, F2 and a click into the current cell edit in place, Esc gives
/// back the old text; Tab and Shift+Tab go through the unlocked columns and leave the grid behind the last
/// and before the first cell; Alt+Down, F4 open the list. Ctrl+C, X, V, Ctrl+Insert, Shift+Insert,
/// Shift+Delete and a pop-up work on the whole cell; the pop-up stays away where MouseDown is connected.
/// Delete by itself is left to the form.
class DataGrid : public QTableView
{
    Q_OBJECT

public:
    using Array = basic::BoundedArray2<QString>;

    explicit DataGrid(QWidget* parent = nullptr);
    ~DataGrid() override;

    /// Shows an array, from its first row; the first visible column that isn't locked becomes current. The
    /// same array again keeps the place, as ReBind does. Null shows nothing.
    void setArray(Array* array);
    [[nodiscard]] Array* boundArray() const;
    /// Reads the array's shape again and drops a pending edit; the place stays as far as the array goes.
    void ReBind();
    /// Paints all cells anew.
    void Refresh();

    /// How many columns the grid shows, whatever the array has; without a call, as many as the first array.
    void setColumnCount(int count);
    [[nodiscard]] int columnCount() const;
    /// Error 9 outside 0 to columnCount() - 1.
    [[nodiscard]] GridColumn Columns(int column);

    [[nodiscard]] int FirstRow() const;
    /// As far as the rows go; moves the page and not the current cell.
    void setFirstRow(int row);
    [[nodiscard]] int Row() const;
    /// Moves; a row outside the page scrolls, one behind the array's last is the last. Error 9 for a row
    /// before the array's first. Nothing when the array has no rows.
    void setRow(int row);
    [[nodiscard]] int Col() const;
    /// Moves; a hidden column gives way to the next one shown. Error 9 outside the columns.
    void setCol(int column);
    /// The array row of the current row.
    [[nodiscard]] int Bookmark() const;
    void setBookmark(int row);
    /// Whole rows that the page holds.
    [[nodiscard]] int VisibleRows() const;

    /// A cell is being edited, ticks and pictures only while their events run.
    [[nodiscard]] bool EditActive() const;
    /// False ends the edit as a move does, true begins one in the current cell.
    void setEditActive(bool active);
    /// Gives the grid the keyboard; to the editor during an edit.
    void SetFocus();

    /// In pixels of the viewport; empty outside the array. For tests and pop-ups.
    [[nodiscard]] QRect cellRect(int row, int column) const;

signals:
    void BeforeColEdit(int column, int key, bool& cancel);
    void BeforeColUpdate(int column, const QString& oldValue, bool& cancel);
    void AfterColUpdate(int column);
    void AfterColEdit(int column);
    void BeforeRowColChange(bool& cancel);
    void RowColChange(int lastRow, int lastColumn);
    void ButtonClick(int column);
    void ValueItemError(int column);
    /// A classic key code (Delete 46), see Keys.h.
    void KeyDown(int& key, int shift);
    void KeyPress(int& keyAscii);
    /// In pixels of the viewport.
    void MouseDown(int button, int shift, int x, int y);
    void LostFocus();
    /// A screen reader moved the view's current cell by itself; the grid follows with its events.
    void currentMovedByReader(int row, int column);

public:
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;
    void updateGeometries() override;
    void scrollContentsBy(int dx, int dy) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

private:
    friend class GridColumn;

    struct Place
    {
        int row = -1;
        int column = -1;
        bool operator==(const Place&) const = default;
    };

    /// The edit under way. Ticks and pictures have no editor, their pending value stands in `toggled`.
    struct Edit
    {
        Place place;
        QString oldText;
        QString toggled;
        QPointer<QLineEdit> editor;
        unsigned serial =
            0; ///< tells an edit from the one before, for handlers that drop it and begin another
        bool active = false;
        bool ending = false;
    };

    // the place
    [[nodiscard]] bool outside(Place place) const;
    bool moveTo(Place place);
    void setPlace(Place place);
    void keepPlace();
    void showPlace();
    void markPlace();
    [[nodiscard]] int shownColumn(int from, int step, bool unlockedOnly) const;
    void setMinimumWidth(int column);
    void followReader(int row, int column);

    // the edit
    [[nodiscard]] bool canEdit() const;
    [[nodiscard]] bool edits(int column) const;
    [[nodiscard]] QString pendingText() const;
    [[nodiscard]] QString pendingValue() const;
    void setPendingText(const QString& text);
    bool askToEdit(int key);
    bool beginEdit(int key);
    void toggle(int key);
    bool endEdit();
    [[nodiscard]] bool acceptEdit();
    void cancelEdit();
    void dropEdit();
    void makeEditor();
    void placeEditor();
    void endEditing();
    void completeFromList(const QString& typed);
    void pressButton();
    void openList();
    void hideList();

    // the keyboard
    bool takeKey(const QKeyEvent& event);
    bool askKeyPress(int& character);
    bool keyInCell(const QKeyEvent& event);
    bool keyInEditor(const QKeyEvent& event);
    bool keyAnywhere(const QKeyEvent& event);
    void keyInList(QKeyEvent* event);
    void typeText(const QString& text, int key);
    void goOn();
    bool tabTo(int step);
    void moveByKey(int key, bool control);
    bool filterInput(QInputMethodEvent& event);

    // the mouse, the clipboard, the focus
    void pressCell(Place place, const QPoint& at);
    void popUpMenu(const QPoint& at);
    [[nodiscard]] bool hearsMouseDown() const;
    void copyCell();
    void pasteCell();
    void emptyCell();
    void focusLeft(Qt::FocusReason reason);
    [[nodiscard]] bool hasFocusInside() const;

    DataGridModel* m_model;
    DataGridDelegate* m_delegate;
    RowMarks* m_marks;
    ValueListPopup* m_list = nullptr; ///< made when it first opens
    Place m_place;
    Edit m_edit;
    int m_wantedFirstRow = -1; ///< set while nothing is laid out
    unsigned m_moves = 0;      ///< tells whether a handler moved
    unsigned m_acts = 0;       ///< tells whether a handler answered a key
    bool m_showPlaceWhenShown = false;
    bool m_marking = false;
    bool m_losingFocus = false;
};

} // namespace controls
