// Columns by their number: the current row's cells, and how the column looks.
#include "platform/controls/DataGrid.h"
#include "platform/controls/DataGridModel.h"

#include <QHeaderView>

#include <algorithm>

namespace controls {

QString GridColumn::Text() const
{
    return m_grid->edits(m_column) ? m_grid->pendingText()
                                   : m_grid->m_model->text(m_grid->m_place.row, m_column);
}

void GridColumn::setText(const QString& text)
{
    ++m_grid->m_acts;
    if (m_grid->edits(m_column))
        m_grid->setPendingText(text);
    else if (m_grid->m_model->holds(m_grid->m_place.row, m_column))
        m_grid->m_model->array()->set(m_grid->m_place.row, m_column, ValueItems().valueOf(text));
}

QString GridColumn::Value() const
{
    return m_grid->edits(m_column) ? m_grid->pendingValue()
                                   : m_grid->m_model->value(m_grid->m_place.row, m_column);
}

void GridColumn::setValue(const QString& value)
{
    ++m_grid->m_acts;
    if (m_grid->edits(m_column))
        m_grid->setPendingText(ValueItems().textOf(value));
    else if (m_grid->m_model->holds(m_grid->m_place.row, m_column))
        m_grid->m_model->array()->set(m_grid->m_place.row, m_column, value);
}

QString GridColumn::Caption() const
{
    return m_grid->m_model->column(m_column).caption;
}

void GridColumn::setCaption(const QString& caption)
{
    m_grid->m_model->column(m_column).caption = caption;
    m_grid->m_model->announceCaption(m_column);
    m_grid->setMinimumWidth(m_column);
}

bool GridColumn::Visible() const
{
    return !m_grid->isColumnHidden(m_column);
}

void GridColumn::setVisible(bool visible)
{
    m_grid->setColumnHidden(m_column, !visible);
    if (!visible && m_grid->Col() == m_column && !m_grid->EditActive())
        m_grid->keepPlace();
}

bool GridColumn::Locked() const
{
    return m_grid->m_model->column(m_column).locked;
}

void GridColumn::setLocked(bool locked)
{
    m_grid->m_model->column(m_column).locked = locked;
    m_grid->markPlace();
}

bool GridColumn::Button() const
{
    return m_grid->m_model->column(m_column).button;
}

void GridColumn::setButton(bool button)
{
    m_grid->m_model->column(m_column).button = button;
    m_grid->Refresh();
}

void GridColumn::setAlignment(Qt::Alignment alignment)
{
    m_grid->m_model->column(m_column).alignment = alignment & Qt::AlignHorizontal_Mask;
    m_grid->m_model->announceCaption(m_column);
    m_grid->Refresh();
}

int GridColumn::Width() const
{
    return m_grid->columnWidth(m_column);
}

void GridColumn::setWidth(int width)
{
    m_grid->setColumnWidth(m_column, std::max(width, m_grid->horizontalHeader()->sectionSizeHint(m_column)));
}

controls::ValueItems& GridColumn::ValueItems() const
{
    return m_grid->m_model->column(m_column).items;
}

} // namespace controls
