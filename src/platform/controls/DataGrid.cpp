#include "platform/controls/DataGrid.h"

#include "platform/controls/DataGridDelegate.h"
#include "platform/controls/DataGridModel.h"
#include "platform/controls/Waiting.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>

#include <algorithm>

namespace controls {

DataGrid::DataGrid(QWidget* parent)
    : QTableView(parent), m_model(new DataGridModel(this)), m_delegate(new DataGridDelegate(*m_model, this)),
      m_marks(new RowMarks(this))
{
    setVerticalHeader(m_marks);
    setItemDelegate(m_delegate);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::NoSelection);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setAutoScroll(false);
    setWordWrap(false);
    setTabKeyNavigation(false); // focusNextPrevChild() has its own way
    setShowGrid(false);         // the cells draw their own lines, which show on a dark palette too
    setCornerButtonEnabled(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(false);
    setModel(m_model);
    connect(m_model, &QAbstractItemModel::modelReset, this, &DataGrid::keepPlace);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, &DataGrid::placeEditor);
    connect(this, &DataGrid::currentMovedByReader, this, &DataGrid::followReader, Qt::QueuedConnection);
}

DataGrid::~DataGrid()
{
    m_edit.active = false;
    if (m_edit.editor) {
        m_edit.editor->removeEventFilter(this);
        delete m_edit.editor;
    }
}

void DataGrid::setArray(Array* array)
{
    ++m_acts;
    if (array == m_model->array()) {
        ReBind();
        return;
    }
    dropEdit();
    if (array && m_model->columnCount() == 0)
        setColumnCount(array->lastColumn() + 1);
    m_place = {};
    m_model->bind(array);
    setFirstRow(0);
}

DataGrid::Array* DataGrid::boundArray() const
{
    return m_model->array();
}

void DataGrid::ReBind()
{
    ++m_acts;
    m_model->announceReset();
}

void DataGrid::Refresh()
{
    markPlace();
    viewport()->update();
}

void DataGrid::setColumnCount(int count)
{
    m_model->setColumnCount(count);
}

int DataGrid::columnCount() const
{
    return m_model->columnCount();
}

GridColumn DataGrid::Columns(int column)
{
    static_cast<void>(m_model->column(column));
    return {*this, column};
}

int DataGrid::FirstRow() const
{
    const int last = std::max(0, m_model->rowCount() - 1);
    return std::min(m_wantedFirstRow >= 0 ? m_wantedFirstRow : verticalScrollBar()->value(), last);
}

void DataGrid::setFirstRow(int row)
{
    ++m_acts;
    const int wanted = std::clamp(row, 0, std::max(0, m_model->rowCount() - 1));
    m_showPlaceWhenShown = false;
    if (!isVisible()) {
        m_wantedFirstRow = wanted;
        return;
    }
    executeDelayedItemsLayout();
    verticalScrollBar()->setValue(wanted);
}

int DataGrid::Row() const
{
    return m_place.row < 0 ? -1 : m_place.row - FirstRow();
}

void DataGrid::setRow(int row)
{
    setBookmark(FirstRow() + row);
}

int DataGrid::Bookmark() const
{
    return m_place.row;
}

void DataGrid::setBookmark(int row)
{
    ++m_acts;
    if (m_model->rowCount() == 0)
        return;
    if (row < 0)
        basic::raise(basic::error::Subscript);
    moveTo({std::min(row, m_model->rowCount() - 1), m_place.column});
}

int DataGrid::Col() const
{
    return m_place.column;
}

void DataGrid::setCol(int column)
{
    ++m_acts;
    static_cast<void>(m_model->column(column));
    const int shown = isColumnHidden(column) ? shownColumn(column, 1, false) : column;
    if (shown >= 0)
        moveTo({m_place.row, shown});
}

int DataGrid::VisibleRows() const
{
    return std::max(1, viewport()->height() / m_marks->defaultSectionSize());
}

void DataGrid::SetFocus()
{
    ++m_acts;
    if (m_edit.editor)
        m_edit.editor->setFocus();
    else
        setFocus();
}

QRect DataGrid::cellRect(int row, int column) const
{
    return visualRect(m_model->index(row, column));
}

bool DataGrid::outside(Place place) const
{
    return place.row < 0 || place.row >= m_model->rowCount() || place.column < 0 ||
           place.column >= m_model->columnCount();
}

/// True when the place is current at the end of all events.
bool DataGrid::moveTo(Place place)
{
    if (place == m_place) {
        showPlace();
        return !outside(place);
    }
    const QPointer<DataGrid> self(this);
    const unsigned moves = m_moves;
    const Place from = m_place;
    if (!endEdit() || moves != m_moves || outside(place))
        return false;
    bool cancel = false;
    if (!outside(from))
        emit BeforeRowColChange(cancel);
    if (!self || cancel || moves != m_moves || outside(place))
        return false;
    setPlace(place);
    emit RowColChange(from.row, from.column);
    return self && m_place == place;
}

void DataGrid::setPlace(Place place)
{
    ++m_moves;
    m_place = place;
    markPlace();
    showPlace();
}

/// After the rows were read anew: the place as far as the array goes.
void DataGrid::keepPlace()
{
    dropEdit();
    Place place = m_place;
    const int rows = m_model->rowCount();
    place.row = rows == 0 ? -1 : std::clamp(place.row, 0, rows - 1);
    if (place.column < 0 || place.column >= m_model->columnCount() || isColumnHidden(place.column))
        place.column = shownColumn(-1, 1, true);
    if (place.column < 0)
        place.column = shownColumn(-1, 1, false);
    if (place != m_place)
        ++m_moves;
    m_place = place;
    markPlace();
}

void DataGrid::showPlace()
{
    m_showPlaceWhenShown = !isVisible();
    if (outside(m_place) || m_showPlaceWhenShown)
        return;
    executeDelayedItemsLayout();
    scrollTo(m_model->index(m_place.row, m_place.column));
}

/// Tells those who paint and who read aloud where the current cell is.
void DataGrid::markPlace()
{
    m_delegate->setCurrent(m_place.row, m_place.column);
    m_marks->setCurrent(m_place.row, m_edit.active);
    m_marking = true;
    selectionModel()->setCurrentIndex(outside(m_place) ? QModelIndex()
                                                       : m_model->index(m_place.row, m_place.column),
                                      QItemSelectionModel::NoUpdate);
    m_marking = false;
    setAttribute(Qt::WA_InputMethodEnabled, canEdit() && !m_model->column(m_place.column).items.isToggled());
    viewport()->update();
}

int DataGrid::shownColumn(int from, int step, bool unlockedOnly) const
{
    for (int column = from + step; column >= 0 && column < m_model->columnCount(); column += step)
        if (!isColumnHidden(column) && !(unlockedOnly && m_model->column(column).locked))
            return column;
    return -1;
}

void DataGrid::setMinimumWidth(int column)
{
    setColumnWidth(column, std::max(columnWidth(column), horizontalHeader()->sectionSizeHint(column)));
}

void DataGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QTableView::currentChanged(current, previous);
    if (m_marking || !current.isValid())
        return;
    emit currentMovedByReader(current.row(), current.column());
}

void DataGrid::followReader(int row, int column)
{
    const QPointer<DataGrid> self(this);
    if (!outside({row, column}) && !isWaiting())
        moveTo({row, column});
    if (self)
        markPlace();
}

void DataGrid::showEvent(QShowEvent* event)
{
    QTableView::showEvent(event);
    executeDelayedItemsLayout();
    if (m_wantedFirstRow >= 0)
        verticalScrollBar()->setValue(m_wantedFirstRow);
    m_wantedFirstRow = -1;
    if (m_showPlaceWhenShown)
        showPlace();
}

void DataGrid::changeEvent(QEvent* event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        m_marks->fitRows();
}

void DataGrid::updateGeometries()
{
    QTableView::updateGeometries();
    placeEditor();
}

void DataGrid::scrollContentsBy(int dx, int dy)
{
    QTableView::scrollContentsBy(dx, dy);
    placeEditor();
}

} // namespace controls
