// Paints the cells of the data grid: texts, ticks, pictures, buttons, and what can't be edited.
#pragma once

#include <QHeaderView>
#include <QStyledItemDelegate>

namespace controls {

class DataGridModel;

class DataGridDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    DataGridDelegate(const DataGridModel& model, QObject* parent)
        : QStyledItemDelegate(parent), m_model(&model)
    {}

    /// The current cell; -1 for none.
    void setCurrent(int row, int column);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

    /// Where the tick or the picture of a cell stands.
    [[nodiscard]] QRect glyphRect(const QRect& cell) const;
    [[nodiscard]] bool hasButton(int column) const;
    /// Where the button of the current cell stands; empty when its column has none.
    [[nodiscard]] QRect buttonRect(const QRect& cell, int column) const;

private:
    void paintButton(QPainter* painter, const QStyleOptionViewItem& option, const QRect& place,
                     int column) const;

    const DataGridModel* m_model;
    int m_row = -1;
    int m_column = -1;
};

/// The strip at the left: a triangle at the current row, a pencil while it is being edited.
class RowMarks : public QHeaderView
{
    Q_OBJECT

public:
    explicit RowMarks(QWidget* parent);

    void setCurrent(int row, bool edited);
    /// Sets the rows' height by the font.
    void fitRows();

protected:
    void paintSection(QPainter* painter, const QRect& rect, int row) const override;
    [[nodiscard]] QSize sizeHint() const override;

private:
    int m_row = -1;
    bool m_edited = false;
};

} // namespace controls
