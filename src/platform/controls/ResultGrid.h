// Shows a recordset, read in place: as many rows as it has, at once.
#pragma once

#include "platform/ado/Recordset.h"

#include <QTableView>

namespace controls {

/// Read-only. A null shows as "NULL" in a fainter italic, apart from an empty text. Long cells are cut for
/// display; Enter or a double click shows one whole. Ctrl+C copies the selection, Ctrl+Shift+C with the
/// column names, as tab-separated text: a cell that holds a tab or a line end stands in quotes, as
/// spreadsheets read it, unless it is copied alone.
class ResultGrid : public QTableView
{
    Q_OBJECT

public:
    explicit ResultGrid(QWidget* parent = nullptr);

    /// The rows to show from the next ReBind on; shared with the caller's handle, not copied.
    void setDataSource(const ado::Recordset& records) { m_records = records; }
    /// Rebuilds columns and rows from the data source.
    void ReBind();
    /// Empties the grid and shows a text in its place.
    void showMessage(const QString& text);
    [[nodiscard]] const QString& message() const { return m_message; }

    /// The selection as it would be copied.
    [[nodiscard]] QString selectionText(bool headers) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showRows(const ado::Recordset& records);
    void fitColumns();
    void copy(bool headers);
    void showCell(const QModelIndex& cell);

    ado::Recordset m_records;
    QString m_message;
};

} // namespace controls
